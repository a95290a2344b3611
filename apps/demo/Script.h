#pragma once

// A scripted session on the order form for runs without a display: real key and mouse
// events on the fields' edit boxes, the list windows and the new-product dialog. Each step
// prints what it did, writes a picture of the window and checks its outcome.

#include <QtCore/QDir>
#include <QtCore/QString>

#include <functional>

class QTextStream;
class QWidget;

namespace demo {

class DemoPlatform;
class OrderForm;

class Script
{
public:
    Script(OrderForm &form, DemoPlatform &platform, const QDir &pictures, QTextStream &out);

    // Plays the whole session; true when every step did what it should.
    bool run();

private:
    struct Check
    {
        bool ok;
        QString detail;
    };
    // Runs one step; the picture is taken before the check, so a failed step is seen.
    bool step(const QString &name, const std::function<void()> &action,
              const std::function<Check()> &check);
    void picture(const QString &name, QWidget *popup = nullptr);

    OrderForm &m_form;
    DemoPlatform &m_platform;
    QDir m_pictures;
    QTextStream &m_out;
    int m_steps = 0;
    int m_picturesTaken = 0;
    bool m_allOk = true;
};

} // namespace demo
