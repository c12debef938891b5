#include "app/nyxnameedit.h"

#include "model/storabletext.h"
#include "slice/image/nyxplaintext.h"

#include <QAction>
#include <QStyle>
#include <QToolTip>
#include <QValidator>

namespace
{
/// Keeps an editor of a list open while its name is refused.
class NameValidator : public QValidator
{
public:
  explicit NameValidator(NYXNameEdit* edit) : QValidator(edit), _edit(*edit) {}

  State validate(QString&, int&) const override { return _edit.refusal().isEmpty() ? Acceptable : Intermediate; }

private:
  const NYXNameEdit& _edit;
};
} // namespace

NYXNameEdit::NYXNameEdit(QWidget* parent)
  : QLineEdit(parent),
    _sign(addAction(style()->standardIcon(QStyle::SP_MessageBoxWarning), QLineEdit::TrailingPosition))
{
  _sign->setObjectName("refusalSign");
  _sign->setVisible(false);
  connect(this, &QLineEdit::textChanged, this, &NYXNameEdit::showRefusal);
}

void NYXNameEdit::setCheck(Check check)
{
  _check = std::move(check);
  setValidator(new NameValidator(this));
}

void NYXNameEdit::showRefusal()
{
  const QString reason = refusal();
  _sign->setVisible(!reason.isEmpty());
  _sign->setToolTip(plainText(reason));
  _sign->setStatusTip(plainText(reason));
  if (!isVisible()) return;
  if (reason.isEmpty())
    QToolTip::hideText();
  else
    QToolTip::showText(mapToGlobal(QPoint(0, height())), plainText(reason), this);
}

QString refusalOfName(const QString& name)
{
  if (isStorableName(name.toStdString())) return {};
  return NYXNameEdit::tr("A name can hold no tab, no line break and none of \"__SC__\", \"__NL__\", \"__DQ__\" and "
                         "\"__HA__\", which stand for other characters in stack files");
}
