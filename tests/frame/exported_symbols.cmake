# Checks that the libraries export what the list says and nothing else, or renews the list.
# cmake -D nm=<nm> -D libraries=<file>|... -D list=<file> [-D renew=ON] -P exported_symbols.cmake

set(exported)
string(REPLACE "|" ";" libraries "${libraries}")
foreach(library IN LISTS libraries)
    execute_process(
        COMMAND ${nm} --dynamic --defined-only --demangle ${library}
        OUTPUT_VARIABLE symbols
        COMMAND_ERROR_IS_FATAL ANY
    )
    string(REGEX MATCHALL "[^\n]+" symbols "${symbols}")
    list(TRANSFORM symbols REPLACE "^[0-9a-f]+ " "") # leaves the kind and the name
    # Instances of standard templates and inline constants are there as the compiler happens to need
    # them: kinds u and V, or W with a standard name.
    list(FILTER symbols EXCLUDE REGEX "^[uV] [^ ]*$|^. [^(]*(std|__gnu_cxx)::")
    list(TRANSFORM symbols REPLACE "^. " "")
    cmake_path(GET library STEM name)
    list(TRANSFORM symbols PREPEND "${name}: ")
    list(APPEND exported ${symbols})
endforeach()
list(REMOVE_DUPLICATES exported) # a constructor has several symbols of one name
list(SORT exported)

if(renew)
    list(JOIN exported "\n" text)
    file(WRITE ${list} "${text}\n")
    return()
endif()

file(STRINGS ${list} listed)
set(added ${exported})
list(REMOVE_ITEM added ${listed})
set(removed ${listed})
list(REMOVE_ITEM removed ${exported})
list(TRANSFORM added PREPEND "added:   ")
list(TRANSFORM removed PREPEND "removed: ")
if(added OR removed)
    list(JOIN added "\n  " added)
    list(JOIN removed "\n  " removed)
    message(FATAL_ERROR "exported, unlike ${list} says:\n  ${added}\n  ${removed}\n"
        "If that is meant, follow docs/library-versions.md and build renew_exported_symbols.")
endif()
