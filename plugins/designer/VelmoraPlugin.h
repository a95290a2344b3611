#pragma once

#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace velmora {

// Puts the field into the widget box of the form designer. A field created while the
// plugin runs inside the designer (initialize() has been called with its core) is in
// design mode; one created by a form loader at run time, which never initializes the
// plugin, is in run mode.
class VelmoraPlugin : public QObject, public QDesignerCustomWidgetInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetInterface")
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    explicit VelmoraPlugin(QObject *parent = nullptr);

    QString name() const override;
    QString group() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QString includeFile() const override;
    QIcon icon() const override;
    bool isContainer() const override;
    QString domXml() const override;

    bool isInitialized() const override;
    void initialize(QDesignerFormEditorInterface *core) override;
    QWidget *createWidget(QWidget *parent) override;

private:
    QDesignerFormEditorInterface *m_core = nullptr;
};

} // namespace velmora
