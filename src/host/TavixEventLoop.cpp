#include "host/TavixEventLoop.h"

#include "base/ui/Theme.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Veldra::Solenne::Tavix {

namespace {

bool leavesPlatformOpen(const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
        if (argument == "-platform" || argument == "--platform")
            return false;
    }
    return qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !qEnvironmentVariableIsEmpty("DISPLAY");
}

} // namespace

struct TavixEventLoop::Loop {
    // Qt keeps pointers to all of these.
    std::vector<std::string> texts;
    std::vector<char*> arguments;
    int argumentCount = 0;
    std::unique_ptr<QApplication> application;
    std::map<int, std::unique_ptr<QSocketNotifier>> watched;
    bool somethingHappened = false;

    // Qt handles deferred deletions only in an event loop of its own, which a shell without Qt never enters.
    static void DeleteWhatWasPutOff() {
        if (!QApplication::activeModalWidget() && !QApplication::activePopupWidget())
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

TavixEventLoop::TavixEventLoop() : m_loop(std::make_unique<Loop>()) {}

TavixEventLoop::~TavixEventLoop() {
    Stop();
}

bool TavixEventLoop::Start(int argc, char** argv) {
    static bool started = false;
    if (m_loop->application || started)
        return false;
    if (QCoreApplication::instance())
        return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
    started = true;
    m_loop->texts.assign(argv, argv + argc);
    if (m_loop->texts.empty())
        m_loop->texts.emplace_back("tavix");
    // Embedding needs X11, which a Wayland session usually offers too.
    if (leavesPlatformOpen(m_loop->texts)) {
        m_loop->texts.emplace_back("-platform");
        m_loop->texts.emplace_back("xcb");
    }
    for (std::string& text : m_loop->texts)
        m_loop->arguments.push_back(text.data());
    m_loop->argumentCount = static_cast<int>(m_loop->arguments.size());
    m_loop->arguments.push_back(nullptr);
    m_loop->application = std::make_unique<QApplication>(m_loop->argumentCount, m_loop->arguments.data());
    QApplication::setQuitOnLastWindowClosed(false);
    return true;
}

void TavixEventLoop::Stop() {
    m_loop->watched.clear();
    m_loop->application.reset();
}

void TavixEventLoop::UseColors(tavix::ColorScheme scheme) {
    tavix::applyColorScheme(scheme);
}

void TavixEventLoop::Watch(int descriptor, std::function<void()> readable) {
    auto notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                     [loop = m_loop.get(), callback = std::move(readable)] {
                         loop->somethingHappened = true;
                         callback();
                     });
    Unwatch(descriptor);
    m_loop->watched[descriptor] = std::move(notifier);
}

void TavixEventLoop::Unwatch(int descriptor) {
    // Deleted later, because a callback may stop watching its own descriptor.
    const auto found = m_loop->watched.find(descriptor);
    if (found == m_loop->watched.end())
        return;
    found->second->setEnabled(false);
    found->second.release()->deleteLater();
    m_loop->watched.erase(found);
}

void TavixEventLoop::ProcessEvents() {
    QCoreApplication::processEvents();
    Loop::DeleteWhatWasPutOff();
}

bool TavixEventLoop::WaitForEvents(std::chrono::milliseconds longest) {
    m_loop->somethingHappened = false;
    bool over = false;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [&over] { over = true; });
    timer.start(longest);
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    Loop::DeleteWhatWasPutOff();
    return m_loop->somethingHappened || !over;
}

} // namespace Veldra::Solenne::Tavix
