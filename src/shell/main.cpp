#include "base/ui/QtMessages.h"
#include "base/ui/QtText.h"
#include "host/TavixHost.h"
#include "shell/Screenshots.h"
#include "shell/ShellOptions.h"
#include "shell/ShellStyle.h"
#include "shell/ShellWindow.h"

#include <QApplication>

#include <cstdio>

using namespace tavix;
using namespace tavix::shell;
using Veldra::Solenne::Tavix::TavixHost;

namespace {

constexpr int kSourceFailed = 3;

// Where nobody can answer a box, its words go to stderr.
class ConsoleMessages final : public Messages {
  public:
    void warn(std::string_view text, std::string_view) override {
        std::fprintf(stderr, "tavix-shell: %s\n", std::string(text).c_str());
    }
    Answer ask(std::string_view text, std::string_view, Answer preset) override {
        warn(text, {});
        return preset;
    }
    std::unique_ptr<Busy> busy() override { return std::make_unique<Busy>(); }
};

int takePictures(const ShellOptions& options) {
    ConsoleMessages messages;
    // The pictures show the program as it is on its first start.
    TavixHost host(messages, makeMemorySettings());
    ShellWindow window(host, messages);
    return takeScreenshots(window, host, options) ? 0 : kSourceFailed;
}

} // namespace

int main(int argc, char** argv) {
    int exitCode = 0;
    const auto options = parseShellOptions(argc, argv, exitCode);
    if (!options)
        return exitCode;
    if (!options->screenshots.empty() && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    int qtArguments = 1;
    QApplication app(qtArguments, argv);
    QApplication::setApplicationName(QStringLiteral("tavix-shell"));
    QApplication::setApplicationDisplayName(QString());
    applyLook(options->scheme);
    if (!options->screenshots.empty())
        return takePictures(*options);

    QtMessages messages;
    TavixHost host(messages);
    ShellWindow window(host, messages);
    messages.setWindow(&window);
    window.show();
    if (!host.GetStartProblem().empty())
        messages.warn(host.GetStartProblem(), {});
    if (!options->repository.empty() && window.openRepository(toQString(options->repository)) && !options->job.empty())
        window.openReportNamed(options->job);
    if (options->repository.empty() && !host.ShowsWelcomeAtStart())
        window.openLastRepository();
    return QApplication::exec();
}
