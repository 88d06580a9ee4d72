// kaskade-inspect: looks at what the show will read, without the show.
#include "tools/inspect/inspect_command.h"

#include <cstdio>
#include <cstring>
#include <vector>

namespace {

std::vector<const InspectCommand*>& commands() {
    static std::vector<const InspectCommand*> all;
    return all;
}

void printUsage(FILE* out) {
    std::fprintf(out, "usage: kaskade-inspect COMMAND ARGS...\n\n"
                      "A SCENE or IMAGE is a plain file or an archive entry written ARCHIVE:NAME.\n\n"
                      "commands:\n");
    for (const InspectCommand* command : commands()) {
        std::fprintf(out, "  %s %s\n      %s\n", command->name, command->usage, command->about);
    }
}

}  // namespace

InspectCommand::InspectCommand(const char* name_, const char* usage_, const char* about_, int (*run_)(int, char**))
    : name(name_), usage(usage_), about(about_), run(run_) {
    commands().push_back(this);
}

int main(int argc, char** argv) {
    if (argc < 2) {
        printUsage(stderr);
        return 2;
    }
    if (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0) {
        printUsage(stdout);
        return 0;
    }
    for (const InspectCommand* command : commands()) {
        if (std::strcmp(argv[1], command->name) == 0) {
            return command->run(argc - 1, argv + 1);
        }
    }
    std::fprintf(stderr, "kaskade-inspect: unknown command '%s' (try --help)\n", argv[1]);
    return 2;
}
