#pragma once

#include <QLabel>

namespace Core {

/// A label of one line that ends in "…" where its text does not fit, and then tells the whole text as tool tip.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

    QSize minimumSizeHint() const override { return QSize(0, QLabel::minimumSizeHint().height()); }

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace Core
