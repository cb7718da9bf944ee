// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "picturegenerator.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>
#include <QtMath>

#include <iterator>

namespace Simulation {

namespace {

/// Three hues that belong together, chosen by the seed.
struct Palette
{
    explicit Palette(QRandomGenerator &random)
        : hues(families[random.bounded(int(std::size(families)))])
    {}

    QColor dark(int which = 0) const { return QColor::fromHsv(hues[which], 190, 46); }
    QColor middle(int which = 0) const { return QColor::fromHsv(hues[which], 200, 130); }
    QColor bright(int which = 0, int alpha = 255) const
    {
        QColor color = QColor::fromHsv(hues[which], 120, 250);
        color.setAlpha(alpha);
        return color;
    }

    static constexpr int families[][3] = {
        {212, 272, 188}, {322, 276, 16}, {196, 160, 228}, {28, 344, 44}, {262, 214, 316}, {8, 338, 256},
    };
    const int (&hues)[3];
};

double between(QRandomGenerator &random, double low, double high)
{
    return low + random.generateDouble() * (high - low);
}

/// Paints in the unit square; `aspect` is width by height, for shapes that must stay round.
using Scene = void (*)(QPainter &painter, QRandomGenerator &random, const Palette &palette, double aspect);

void fillVertical(QPainter &painter, const QColor &top, const QColor &bottom)
{
    QLinearGradient gradient(0, 0, 0.3, 1);
    gradient.setColorAt(0, top);
    gradient.setColorAt(1, bottom);
    painter.fillRect(QRectF(0, 0, 1, 1), gradient);
}

void glow(QPainter &painter, const QPointF &centre, double radiusX, double radiusY, QColor color)
{
    painter.save();
    painter.translate(centre);
    painter.scale(radiusX, radiusY);
    QRadialGradient gradient(0, 0, 1);
    gradient.setColorAt(0, color);
    color.setAlpha(0);
    gradient.setColorAt(1, color);
    painter.fillRect(QRectF(-1, -1, 2, 2), gradient);
    painter.restore();
}

void beamsLight(QPainter &painter, QRandomGenerator &random, const Palette &palette, double)
{
    fillVertical(painter, palette.dark(), QColor(6, 7, 12));
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    for (int i = 0; i < 11; ++i) {
        const double from = (i + 0.5) / 11;
        const double to = from + between(random, -0.35, 0.35);
        const double width = between(random, 0.03, 0.10);
        QLinearGradient light(from, 0, to, 1);
        light.setColorAt(0, palette.bright(i % 3, 170));
        light.setColorAt(1, palette.bright(i % 3, 0));
        painter.setBrush(light);
        painter.drawPolygon(QPolygonF({{from - 0.004, 0.06}, {from + 0.004, 0.06}, {to + width, 1}, {to - width, 1}}));
    }
    glow(painter, {0.5, 1}, 0.7, 0.35, palette.bright(1, 120));
}

void beamsDetail(QPainter &painter, QRandomGenerator &, const Palette &palette, double aspect)
{
    painter.setBrush(QColor(14, 15, 20));
    painter.drawRect(QRectF(0, 0.035, 1, 0.016));
    for (int i = 0; i < 11; ++i) {
        painter.setBrush(palette.bright(i % 3));
        painter.drawEllipse(QPointF((i + 0.5) / 11, 0.06), 0.014 / aspect, 0.014);
    }
}

void bokehLight(QPainter &painter, QRandomGenerator &random, const Palette &palette, double aspect)
{
    fillVertical(painter, palette.dark(), palette.middle(1));
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    for (int i = 0; i < 46; ++i) {
        const double radius = between(random, 0.02, 0.12);
        const QPointF centre(random.generateDouble(), between(random, 0.1, 1.0));
        painter.setBrush(palette.bright(i % 3, random.bounded(16, 70)));
        painter.drawEllipse(centre, radius / aspect, radius);
    }
}

void bokehDetail(QPainter &painter, QRandomGenerator &random, const Palette &palette, double aspect)
{
    for (int i = 0; i < 24; ++i) {
        const double radius = between(random, 0.004, 0.02);
        painter.setBrush(palette.bright(i % 3, random.bounded(60, 180)));
        painter.drawEllipse(QPointF(random.generateDouble(), random.generateDouble()), radius / aspect, radius);
    }
}

void stageLight(QPainter &painter, QRandomGenerator &random, const Palette &palette, double)
{
    fillVertical(painter, QColor(8, 9, 14), palette.dark(1));
    glow(painter, {0.5, 0.42}, 0.55, 0.5, palette.middle());
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    for (int i = 0; i < 5; ++i)
        glow(painter, {0.1 + 0.2 * i, 0.86}, 0.16, 0.10, palette.bright(i % 2, random.bounded(90, 160)));
}

void stageDetail(QPainter &painter, QRandomGenerator &random, const Palette &palette, double aspect)
{
    for (int row = 0; row < 6; ++row) {
        for (int column = 0; column < 12; ++column) {
            const double height = 0.5 + 0.5 * qSin(0.7 * column + row + palette.hues[0]);
            painter.setBrush(palette.bright(row % 2, 20 + int(120 * height * random.generateDouble())));
            painter.drawRect(QRectF(0.16 + column * 0.0567, 0.14 + row * 0.085, 0.0545, 0.081));
        }
    }
    painter.setBrush(QColor(4, 5, 8));
    painter.drawRect(QRectF(0, 0.93, 1, 0.07));
    for (int i = 0; i < 34; ++i) {
        const double x = (i + between(random, 0.2, 0.8)) / 34;
        const double y = between(random, 0.90, 0.94);
        painter.drawEllipse(QPointF(x, y), 0.024 / aspect, 0.030);
        painter.drawRoundedRect(QRectF(x - 0.045 / aspect, y + 0.025, 0.09 / aspect, 0.1), 0.02, 0.03);
    }
}

void auroraLight(QPainter &painter, QRandomGenerator &random, const Palette &palette, double)
{
    fillVertical(painter, QColor(5, 8, 18), palette.dark(1));
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    for (int band = 0; band < 6; ++band) {
        const double phase = between(random, 0, 6.28);
        const double base = between(random, 0.3, 0.75);
        QPolygonF curve;
        for (int i = 0; i <= 60; ++i)
            curve << QPointF(i / 60.0, base + 0.10 * qSin(phase + i * 0.11) + 0.05 * qSin(2.3 * phase + i * 0.23));
        for (int i = 60; i >= 0; --i)
            curve << curve.at(i) - QPointF(0, 0.30);
        QLinearGradient light(0, base - 0.3, 0, base + 0.12);
        light.setColorAt(0, palette.bright(band % 3, 0));
        light.setColorAt(1, palette.bright(band % 3, 90));
        painter.setBrush(light);
        painter.drawPolygon(curve);
    }
}

void auroraDetail(QPainter &painter, QRandomGenerator &random, const Palette &palette, double aspect)
{
    for (int i = 0; i < 160; ++i) {
        const double radius = between(random, 0.0006, 0.0022);
        painter.setBrush(palette.bright(0, random.bounded(60, 220)));
        painter.drawEllipse(QPointF(random.generateDouble(), between(random, 0, 0.6)), radius / aspect, radius);
    }
}

struct BackgroundScene
{
    const char *name;
    Scene light;  ///< soft parts, painted at half the size
    Scene detail; ///< sharp parts, painted at full size
};

constexpr BackgroundScene backgroundScenes[] = {
    {"aurora", auroraLight, auroraDetail},
    {"beams", beamsLight, beamsDetail},
    {"bokeh", bokehLight, bokehDetail},
    {"stage", stageLight, stageDetail},
};

void paint(QImage &image, Scene scene, QRandomGenerator &random, const Palette &palette)
{
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.scale(image.width(), image.height());
    scene(painter, random, palette, double(image.width()) / image.height());
}

/// Fine grain, without which a generated picture would compress far better than a real one.
void addGrain(QImage &image, quint32 seed)
{
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        quint32 state = (seed + 1) * 2654435761u ^ (static_cast<quint32>(y) + 1) * 40503u;
        for (int x = 0; x < image.width(); ++x) {
            state ^= state << 13;
            state ^= state >> 17;
            state ^= state << 5;
            const int grain = static_cast<int>((state >> 8) % 7) - 3;
            const QRgb pixel = line[x];
            line[x] = qRgb(qBound(0, qRed(pixel) + grain, 255), qBound(0, qGreen(pixel) + grain, 255),
                           qBound(0, qBlue(pixel) + grain, 255));
        }
    }
}

/// What a logo says, or bars when letters cannot be drawn.
void paintText(QPainter &painter, const QRectF &area, const QString &text, const QColor &color,
               QRandomGenerator &random)
{
    if (text.isEmpty() || !qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        const double width = area.width() / 9;
        for (int i = 0; i < 5; ++i) {
            const double height = area.height() * between(random, 0.3, 1.0);
            painter.drawRect(QRectF(area.left() + 2 * i * width, area.bottom() - height, width, height));
        }
        return;
    }
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setBold(true);
    font.setPixelSize(qMax(1, qFloor(area.height())));
    const int width = qMax(1, QFontMetrics(font).horizontalAdvance(text));
    if (width > area.width())
        font.setPixelSize(qMax(1, qFloor(font.pixelSize() * area.width() / width)));
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(area, Qt::AlignCenter, text);
}

QPainterPath badgeOutline(const QSize &size, double inset)
{
    const double edge = inset * size.height();
    QPainterPath path;
    path.addRoundedRect(QRectF(QPointF(0, 0), size).adjusted(edge, edge, -edge, -edge), 0.24 * size.height(),
                        0.24 * size.height());
    return path;
}

QPainterPath roundelOutline(const QSize &size, double inset)
{
    const double radius = (0.5 - inset) * qMin(size.width(), size.height());
    QPainterPath path;
    path.addEllipse(QRectF(QPointF(0, 0), size).center(), radius, radius);
    return path;
}

struct LogoShape
{
    const char *name;
    QPainterPath (*outline)(const QSize &size, double inset);
};

constexpr LogoShape logoShapes[] = {
    {"badge", badgeOutline},
    {"roundel", roundelOutline},
};

} // namespace

QStringList PictureGenerator::backgroundNames()
{
    QStringList names;
    for (const BackgroundScene &scene : backgroundScenes)
        names.append(QLatin1String(scene.name));
    return names;
}

QStringList PictureGenerator::logoNames()
{
    QStringList names;
    for (const LogoShape &shape : logoShapes)
        names.append(QLatin1String(shape.name));
    return names;
}

QImage PictureGenerator::background(const QString &name, const QSize &size, quint32 seed)
{
    for (const BackgroundScene &scene : backgroundScenes) {
        if (name != QLatin1String(scene.name) || size.isEmpty())
            continue;
        QRandomGenerator random(seed);
        const Palette palette(random);
        QImage soft((size + QSize(1, 1)) / 2, QImage::Format_RGB32);
        paint(soft, scene.light, random, palette);
        QImage image =
            soft.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).convertToFormat(QImage::Format_RGB32);
        paint(image, scene.detail, random, palette);
        addGrain(image, seed);
        return image;
    }
    return QImage();
}

QImage PictureGenerator::logo(const QString &name, const QSize &size, quint32 seed, const QString &text)
{
    for (const LogoShape &shape : logoShapes) {
        if (name != QLatin1String(shape.name) || size.isEmpty())
            continue;
        QRandomGenerator random(seed);
        const Palette palette(random);
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        for (int step = 0; step < 5; ++step) {
            painter.setBrush(QColor(0, 0, 0, 22));
            painter.drawPath(shape.outline(size, 0.012 * step));
        }
        QLinearGradient body(0, 0, 0, size.height());
        body.setColorAt(0, palette.middle());
        body.setColorAt(1, palette.dark(1));
        painter.setBrush(body);
        painter.drawPath(shape.outline(size, 0.07));
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(palette.bright(0, 220), 0.025 * size.height()));
        painter.drawPath(shape.outline(size, 0.12));
        const QRectF inner = shape.outline(size, 0.22).boundingRect();
        const double letterHeight = qMin(inner.height(), 0.42 * size.height());
        QRectF textArea(inner.left(), 0, inner.width(), letterHeight);
        textArea.moveCenter(inner.center());
        paintText(painter, textArea, text, QColor(255, 255, 255, 245), random);
        painter.end();
        return image.convertToFormat(QImage::Format_ARGB32);
    }
    return QImage();
}

} // namespace Simulation
