#pragma once

// Asks for a product that is not in the list yet: its name and unit price, both
// required, checked by the fields' own exit checks before the dialog closes.

#include <QtWidgets/QDialog>

class QDialogButtonBox;
namespace velmora {
class Velmora;
}

namespace demo {

class ProductDialog : public QDialog
{
    Q_OBJECT
public:
    explicit ProductDialog(QWidget *parent = nullptr);

    // The name as a list cell takes it: without tabs, which separate a row's cells.
    QString name() const;
    // The unit price; valid once the dialog was accepted.
    double price() const;
    // The price as the field holds it (regional decimal separator).
    QString priceText() const;

    velmora::Velmora *nameField() const { return m_name; }
    velmora::Velmora *priceField() const { return m_price; }
    QDialogButtonBox *buttons() const { return m_buttons; }

    void accept() override;

private:
    velmora::Velmora *m_name;
    velmora::Velmora *m_price;
    QDialogButtonBox *m_buttons;
};

} // namespace demo
