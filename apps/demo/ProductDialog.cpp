#include "ProductDialog.h"

#include <velmora/Velmora.h>

#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QVBoxLayout>

using velmora::Velmora;

namespace demo {

ProductDialog::ProductDialog(QWidget *parent)
    : QDialog(parent), m_name(new Velmora), m_price(new Velmora),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel))
{
    setWindowTitle(QStringLiteral("Nové zboží"));
    m_name->setObjectName(QStringLiteral("productName"));
    m_name->setLabel(QStringLiteral("Název zboží"));
    m_name->setInputType(velmora::itAlfaNum);
    m_name->setMaxLength(60);
    m_name->setEnableEmpty(false);
    m_name->setMinimumWidth(260);
    m_price->setObjectName(QStringLiteral("productPrice"));
    m_price->setLabel(QStringLiteral("Cena za jednotku"));
    m_price->setInputType(velmora::itNum);
    m_price->setFormatStr(QStringLiteral("#,##0.00"));
    m_price->setAlignment(velmora::vbRightJustify);
    m_price->setEnableEmpty(false);

    auto *form = new QFormLayout;
    form->addRow(m_name->Label() + u':', m_name);
    form->addRow(m_price->Label() + u':', m_price);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_buttons);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &ProductDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &ProductDialog::reject);
}

QString ProductDialog::name() const
{
    return m_name->Value().replace(u'\t', u' ').trimmed();
}

double ProductDialog::price() const
{
    return m_price->varValue().toDouble();
}

QString ProductDialog::priceText() const
{
    return m_price->Value();
}

void ProductDialog::accept()
{
    // The dialog is a window of its own: its fields are a group apart from the order's.
    if (m_name->DoValidateAll() && !name().isEmpty())
        QDialog::accept();
}

} // namespace demo
