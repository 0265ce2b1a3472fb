#include "shell/windows/frmNumberEntry.h"

#include <QDialogButtonBox>
#include <QFocusEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "shell/windows/gridedit.h"
#include "shell/windows/shown.h"

namespace zandrel {

frmNumberEntry::frmNumberEntry(NumberEntry entry, Done done, QWidget* over)
    : QDialog(over), entry_(std::move(entry)), txtNumber_(new QLineEdit(this)) {
    setObjectName(QStringLiteral("frmNumberEntry"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(Shown(entry_.Caption));
    txtNumber_->setObjectName(QStringLiteral("txtNumber"));
    txtNumber_->setAlignment(Qt::AlignRight);
    txtNumber_->setText(Shown(entry_.Text));
    txtNumber_->setAccessibleName(Shown(entry_.Caption));
    txtNumber_->installEventFilter(this);
    Reformat();

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("cmdOK"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cmdCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(this, &QDialog::accepted, this, [this, done = std::move(done)] {
        Reformat();
        done(txtNumber_->text().toStdString());
    });

    auto* column = new QVBoxLayout(this);
    column->setSpacing(fontMetrics().height());
    column->addWidget(txtNumber_);
    column->addWidget(buttons);
    column->setSizeConstraint(QLayout::SetFixedSize);
    // Room for the whole caption in the title bar.
    txtNumber_->setMinimumWidth(fontMetrics().horizontalAdvance(windowTitle()) + fontMetrics().height() * 6);
    txtNumber_->selectAll();
    txtNumber_->setFocus();
}

void frmNumberEntry::Reformat() {
    txtNumber_->setText(Shown(NumberEntryText(txtNumber_->text().toStdString(), entry_.Format)));
}

bool frmNumberEntry::eventFilter(QObject* object, QEvent* event) {
    if (object == txtNumber_ && event->type() == QEvent::FocusOut &&
        IsLeft(static_cast<QFocusEvent*>(event)->reason()))
        Reformat();
    return QDialog::eventFilter(object, event);
}

}  // namespace zandrel
