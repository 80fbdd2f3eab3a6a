#include <QApplication>
#include <QFont>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

// Warnings of the offscreen platform that do not concern our code.
bool isPlatformNoise(const QString& text) {
    return text.contains(QLatin1String("This plugin does not support")) ||
           text.contains(QLatin1String("XDG_RUNTIME_DIR"));
}

void failOnWarning(QtMsgType type, const QMessageLogContext&, const QString& text) {
    std::fprintf(stderr, "Qt: %s\n", qUtf8Printable(text));
    if (type != QtDebugMsg && type != QtInfoMsg && !isPlatformNoise(text))
        ADD_FAILURE() << "Qt warned: " << qUtf8Printable(text);
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
    qInstallMessageHandler(failOnWarning);
    const int result = RUN_ALL_TESTS();
    qInstallMessageHandler(nullptr);
    return result;
}
