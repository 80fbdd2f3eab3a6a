#include "SelfTest.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

using namespace embedding;

namespace {

int usage() {
    std::fprintf(stderr, "embedding [--self-test | --repeat TIMES] REPOSITORY SOURCE TABLE\n"
                         "Shows the first report of a repository in a window of plain Xlib.\n");
    return 2;
}

int runInteractively(tv::TavixEventLoop& loop, const Sample& sample) {
    XlibShell shell(loop);
    tv::TavixHost& host = shell.host();
    const FileConnection connection(sample.repository);
    const auto reports = tv::TavixHost::GetReports(connection);
    if (!reports || reports->empty()) {
        std::fprintf(stderr, "embedding: %s\n", reports ? "there is no report" : reports.error().text.c_str());
        return 1;
    }
    if (!shell.open()) {
        std::fprintf(stderr, "embedding: the viewer cannot be put into a window here\n");
        return 1;
    }
    const auto load = [&] { host.LoadReportForJob("", reports->front().JobID, &connection); };
    bool quit = false;
    shell.onLetter = [&](char letter) {
        if (letter == 't')
            host.SelectTable(sample.source, "KVTK", "", "", sample.table);
        else if (letter == 'o')
            host.ExecuteCommand(static_cast<int>(tv::TavixCommandConstants::Options));
        else if (letter == 'n')
            host.ExecuteCommand(static_cast<int>(tv::TavixCommandConstants::New));
        else if (letter == 'l')
            load();
        else if (letter == 'q')
            quit = true;
    };
    load();
    while (!quit && !shell.isClosed())
        shell.step();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    bool selfTest = false;
    int times = 0;
    int next = 1;
    if (next < argc && std::strcmp(argv[next], "--self-test") == 0) {
        selfTest = true;
        ++next;
    } else if (next + 1 < argc && std::strcmp(argv[next], "--repeat") == 0) {
        times = std::atoi(argv[next + 1]);
        next += 2;
        if (times <= 0)
            return usage();
    }
    if (argc - next != 3 || argv[next][0] == '-')
        return usage();
    const Sample sample{argv[next], argv[next + 1], argv[next + 2]};
    tv::TavixEventLoop loop;
    loop.Start(1, argv);
    try {
        if (selfTest)
            return runSelfTest(loop, sample) ? 0 : 1;
        if (times > 0)
            return runRepeated(loop, sample, times) ? 0 : 1;
        return runInteractively(loop, sample);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "embedding: %s\n", failure.what());
        return 1;
    }
}
