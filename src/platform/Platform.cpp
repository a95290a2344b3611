#include <velmora/Platform.h>

#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>

namespace velmora {

namespace {
Platform *installed = nullptr;
} // namespace

Platform::~Platform() = default;

void Platform::beep(int, int)
{
    // Qt has one system bell; pitch and length are the caller's wish only.
    QApplication::beep();
}

void Platform::messageBox(const QString &text, const QString &title, QWidget *owner)
{
    QMessageBox::warning(owner, title, text, QMessageBox::Ok);
}

QDate Platform::today() const
{
    return QDate::currentDate();
}

QDateTime Platform::now() const
{
    return QDateTime::currentDateTime();
}

bool Platform::insertToggled() const
{
    return m_insertToggled;
}

void Platform::setInsertToggled(bool on)
{
    m_insertToggled = on;
}

bool Platform::isNtFamily() const
{
    // Every platform Qt 6 runs on shows bare letters on the shortcut buttons.
    return true;
}

RegionalSettings Platform::regionalSettings() const
{
    return RegionalSettings::fromLocale(QLocale::system());
}

Platform &Platform::instance()
{
    static Platform fallback;
    return installed ? *installed : fallback;
}

void Platform::install(Platform *platform)
{
    installed = platform;
}

} // namespace velmora
