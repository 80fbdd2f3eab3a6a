#include "cli/CommandLine.h"

int main(int argc, char** argv) {
    return tavix::cli::runCommandLine(argc, argv);
}
