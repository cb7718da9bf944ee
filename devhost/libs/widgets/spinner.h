#pragma once

#include <QVariantAnimation>
#include <QWidget>

namespace Corvel {
namespace Widgets {

/// A turning arc that says that work goes on; it turns only while it is visible.
class Spinner : public QWidget
{
    Q_OBJECT

public:
    explicit Spinner(QWidget *parent);

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QVariantAnimation m_angle;
};

} // namespace Widgets
} // namespace Corvel
