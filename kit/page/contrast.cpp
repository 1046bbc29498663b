#include "kit/page/contrast.h"

#include <QPalette>

#include <algorithm>
#include <cmath>

namespace tidebrook {

namespace {

constexpr qreal leastContrast = 4.5;
constexpr qreal middleLuminance = 0.18; // black and white contrast equally with it

qreal luminance(const QColor &colour) {
    const auto linear = [](qreal part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

} // namespace

qreal contrastOf(const QColor &one, const QColor &other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor readableOn(const QColor &ground, const QColor &colour) {
    const int target = luminance(ground) < middleLuminance ? 255 : 0;
    constexpr int steps = 16;
    QColor shown;
    for (int step = 0; step <= steps; ++step) {
        const auto moved = [=](int part) { return part + (target - part) * step / steps; };
        shown = QColor(moved(colour.red()), moved(colour.green()), moved(colour.blue()));
        if (contrastOf(ground, shown) >= leastContrast)
            break;
    }
    return shown;
}

void makeReadable(QPalette &palette) {
    struct Text {
        QPalette::ColorRole ground;
        QPalette::ColorRole colour;
    };
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        const auto adapt = [&palette, group](QPalette::ColorRole ground, QPalette::ColorRole role) {
            palette.setColor(group, role,
                             readableOn(palette.color(group, ground), palette.color(group, role)));
        };
        for (const auto &[ground, colour] :
             {Text{QPalette::Window, QPalette::WindowText}, Text{QPalette::Base, QPalette::Text},
              Text{QPalette::Button, QPalette::ButtonText}, Text{QPalette::Base, QPalette::Link},
              Text{QPalette::Base, QPalette::LinkVisited},
              Text{QPalette::HighlightedText, QPalette::Highlight}})
            adapt(ground, colour);
    }
}

} // namespace tidebrook
