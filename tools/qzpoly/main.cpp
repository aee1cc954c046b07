#include <tools/qzpoly/commands/program.h>
#include <tools/qzpoly/terminal/terminal.h>

int main(int argument_count, char** arguments) {
    catch_interrupts();
    return run_program(argument_count, arguments);
}
