# Completion of qzpoly for bash: subcommands, their options as --help tells them, and files.

_qzpoly() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local subcommands='render turntable sheet check info convert pack dump visible probe stats verify'
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "$subcommands --help --version" -- "$word")
        return
    fi
    case $before in
        --camera) mapfile -t COMPREPLY < <(compgen -W \
            'front back left right top bottom three-quarter' -- "$word") ;;
        --shade)
            local modes='shaded normal uv color group primitive facing'
            [ "${COMP_WORDS[1]}" = sheet ] || modes+=' property:'
            mapfile -t COMPREPLY < <(compgen -W "$modes" -- "$word")
            ;;
        --background) mapfile -t COMPREPLY < <(compgen -W 'white black grey blue' -- "$word") ;;
        --ignore) mapfile -t COMPREPLY < <(compgen -W \
            "$("${COMP_WORDS[0]}" check --help | sed -n \
                '/^Kinds of faults:/,/^Polygons/s/^  \([a-z-]*\): .*/\1/p')" -- "$word") ;;
        *)
            if [[ $word == -* ]]; then
                mapfile -t COMPREPLY < <(compgen -W "$("${COMP_WORDS[0]}" "${COMP_WORDS[1]}" --help \
                    2>/dev/null | sed -n 's/^  -*[a-z]*,*\(--[a-z-]*\).*/\1/p')" -- "$word")
            else
                mapfile -t COMPREPLY < <(compgen -f -- "$word")
            fi
            ;;
    esac
}
complete -o filenames -F _qzpoly qzpoly
