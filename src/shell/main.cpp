#include "base/ui/QtMessages.h"
#include "base/ui/QtText.h"
#include "host/TavixHost.h"
#include "shell/ShellOptions.h"
#include "shell/ShellStyle.h"
#include "shell/ShellWindow.h"

#include <QApplication>

using namespace tavix;
using namespace tavix::shell;
using Veldra::Solenne::Tavix::TavixHost;

int main(int argc, char** argv) {
    int exitCode = 0;
    const auto options = parseShellOptions(argc, argv, exitCode);
    if (!options)
        return exitCode;
    int qtArguments = 1;
    QApplication app(qtArguments, argv);
    QApplication::setApplicationName(QStringLiteral("tavix-shell"));
    QApplication::setApplicationDisplayName(QString());

    QtMessages messages;
    TavixHost host(messages);
    applyLook(options->scheme.value_or(host.GetColorScheme()));
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
