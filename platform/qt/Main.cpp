#include <cstdio>
#include <cstdlib>

#include <QApplication>

#include "Icons.h"
#include "QtWindowSystem.h"

// The entry of the module. The application object and the window system live as long as the process: windows of a host may go later than anything
// that could end them in order.

static bool HasText(const char* variable)
{
    const char* const text = std::getenv(variable);
    return text && *text;
}

/// Without a screen the toolkit would end the process.
static bool HasScreen() { return HasText("QT_QPA_PLATFORM") || HasText("DISPLAY") || HasText("WAYLAND_DISPLAY"); }

/// Says what the toolkit says, but for what it can't do without a screen, which nobody asked.
static void Say(QtMsgType, const QMessageLogContext&, const QString& text)
{
    if (!text.startsWith(QStringLiteral("This plugin does not support")) &&
        !text.startsWith(QStringLiteral("QStandardPaths: XDG_RUNTIME_DIR")))
        std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
}

static void MakeApplication()
{
    qInstallMessageHandler(&Say);
    // Pictures go straight to the window on X11, and by way of memory anywhere else: where both can be had, the former is faster.
    if (!HasText("QT_QPA_PLATFORM") && HasText("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", HasText("WAYLAND_DISPLAY") ? "xcb;wayland" : "xcb");
    static char name[] = "zelview";
    static char* arguments[] = {name, nullptr};
    static int count = 1;
    QCoreApplication::setAttribute(Qt::AA_DontCreateNativeWidgetSiblings);    // bars and docks beside a GL window
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    new QApplication(count, arguments);
    QCoreApplication::setApplicationName(QStringLiteral("zelview"));
    QGuiApplication::setDesktopFileName(QStringLiteral("3dzel-viewer"));
    QGuiApplication::setQuitOnLastWindowClosed(false);    // the window system counts frames
    QApplication::setWindowIcon(GetIcon(PROGRAM_ICON));
}

extern "C" __attribute__((visibility("default"))) IWindowSystem* ZelCreateWindowSystem(unsigned int version, CXTString<wchar_t>* error)
{
    static CQtWindowSystem* system = nullptr;
    if (version != WINDOWS_VERSION)
        return nullptr;
    if (system)
        return system;
    if (!QCoreApplication::instance()) {
        if (!HasScreen()) {
            if (error)
                error->LoadStringW(9811);
            return nullptr;
        }
        MakeApplication();
    } else if (!qobject_cast<QApplication*>(QCoreApplication::instance())) {
        if (error)
            error->LoadStringW(9812);
        return nullptr;
    }
    return system = new CQtWindowSystem;
}
