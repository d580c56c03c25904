#include "Controls/Qt/Forms/Card.h"

#include <QPainter>

namespace farview
{
namespace
{

constexpr double cornerRadius = 8.0;
constexpr double edgeOpacity = 0.2; // of the text's colour

} // namespace

void Card::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor edge = palette().color(QPalette::WindowText);
    edge.setAlphaF(edgeOpacity);
    painter.setPen(edge);
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius,
                            cornerRadius);
}

} // namespace farview
