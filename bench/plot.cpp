#include "plot.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace bench {
namespace {

constexpr double kWidth = 960;
constexpr double kHeight = 560;
constexpr double kLeft = 70; // where the axes begin
constexpr double kRight = 600;
constexpr double kTop = 30;
constexpr double kBottom = 500;
constexpr double kLegend = 620;
constexpr const char *kColours[] = {"#1b6ca8", "#c0392b", "#27864a", "#8e44ad", "#b8860b",
                                    "#16a2b8", "#7f4f24", "#e2703a", "#4b4b4b", "#d63384"};

template <typename... Arguments>
void append(std::string &text, const char *format, Arguments... arguments) {
    char piece[512];
    std::snprintf(piece, sizeof piece, format, arguments...);
    text += piece;
}

std::string escaped(const std::string &name) {
    std::string out;
    for (const char c : name)
        out += c == '<' ? "&lt;" : c == '&' ? "&amp;" : std::string(1, c);
    return out;
}

} // namespace

std::string plotGrowth(const std::vector<Curve> &curves) {
    const std::vector<std::size_t> &sizes = growthSizes();
    double lowest = 1e9;
    double highest = 0;
    for (const Curve &curve : curves)
        for (const double value : curve.nanosecondsPerByte) {
            lowest = std::min(lowest, value);
            highest = std::max(highest, value);
        }
    const double bottomPower = std::floor(std::log10(lowest));
    const double topPower = std::ceil(std::log10(highest));
    const auto x = [&sizes](std::size_t i) {
        return kLeft + (kRight - kLeft) * static_cast<double>(i) / static_cast<double>(sizes.size() - 1);
    };
    const auto y = [=](double value) {
        return kBottom - (kBottom - kTop) * (std::log10(value) - bottomPower) / (topPower - bottomPower);
    };

    std::string svg;
    append(
        svg,
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\" font-family=\"sans-serif\" "
        "font-size=\"12\">\n<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n",
        kWidth, kHeight);
    for (double power = bottomPower; power <= topPower; power += 1) {
        const double at = y(std::pow(10, power));
        append(svg, "<line x1=\"%.0f\" y1=\"%.1f\" x2=\"%.0f\" y2=\"%.1f\" stroke=\"#ddd\"/>\n", kLeft, at,
               kRight, at);
        append(svg, "<text x=\"%.0f\" y=\"%.1f\" text-anchor=\"end\">%g</text>\n", kLeft - 8, at + 4,
               std::pow(10, power));
    }
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const bool kilo = sizes[i] < (1u << 20);
        append(svg, "<text x=\"%.1f\" y=\"%.0f\" text-anchor=\"middle\">%zu %s</text>\n", x(i), kBottom + 20,
               sizes[i] >> (kilo ? 10 : 20), kilo ? "kB" : "MB");
    }
    append(svg, "<text x=\"%.0f\" y=\"%.0f\" text-anchor=\"middle\">size of the text</text>\n",
           (kLeft + kRight) / 2, kBottom + 45);
    append(svg, "<text x=\"%.0f\" y=\"%.0f\">nanoseconds per byte</text>\n", kLeft - 50, kTop - 12);
    for (std::size_t c = 0; c < curves.size(); ++c) {
        const char *const colour = kColours[c % std::size(kColours)];
        svg += "<polyline fill=\"none\" stroke-width=\"2\" stroke=\"" + std::string(colour) + "\" points=\"";
        for (std::size_t i = 0; i < sizes.size(); ++i)
            append(svg, "%.1f,%.1f ", x(i), y(curves[c].nanosecondsPerByte[i]));
        svg += "\"/>\n";
        const double line = kTop + 20 + 22 * static_cast<double>(c);
        append(svg,
               "<line x1=\"%.0f\" y1=\"%.0f\" x2=\"%.0f\" y2=\"%.0f\" stroke-width=\"2\" stroke=\"%s\"/>\n",
               kLegend, line - 4, kLegend + 20, line - 4, colour);
        append(svg, "<text x=\"%.0f\" y=\"%.0f\">%s</text>\n", kLegend + 28, line,
               escaped(curves[c].name).c_str());
    }
    return svg + "</svg>\n";
}

} // namespace bench
