// Draws what `scaling` printed: the time of each method, relative to its time at the standard size or without specks.

#include <array>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "common/Failure.h"
#include "common/Plot.h"
#include "common/Png.h"
#include "common/Program.h"

namespace {

using examples::Curve;
using examples::Failure;
using examples::Panel;

struct Series {
    std::vector<double> values;
    std::vector<double> times;  // microseconds
};
/// By quantity and method, in the order of the names.
using Table = std::map<std::string, std::map<std::string, Series>>;

Table readTable(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw Failure(path + ": cannot be read");
    Table table;
    std::string line;
    std::getline(file, line);  // titles
    while (std::getline(file, line)) {
        std::istringstream fields(line);
        std::string method;
        std::string quantity;
        double value = 0.0;
        double time = 0.0;
        char comma = ' ';
        std::getline(fields, method, ',');
        std::getline(fields, quantity, ',');
        fields >> value >> comma >> time;
        if (!fields) throw Failure(path + ": not a line of this table: " + line);
        Series& series = table[quantity][method];
        series.values.push_back(value);
        series.times.push_back(time);
    }
    return table;
}

struct Quantity {
    const char* name;
    const char* title;
    const char* axis;
    double standard;  // value at which the relative time is 1; 0 for the first one
};

constexpr std::array<Quantity, 3> kQuantities = {{{"width", "1024 rows", "columns", 1280.0},
                                                  {"height", "1280 columns", "rows", 1024.0},
                                                  {"candidates", "1280 x 1024", "candidates in a column", 0.0}}};

constexpr std::array kColours = {examples::colours::kBlue, examples::colours::kOrange, examples::colours::kGreen,
                                 examples::colours::kRed,  examples::colours::kBlack,  examples::colours::kGrey};

double timeAtStandard(const Series& series, double standard) {
    for (std::size_t i = 0; i < series.values.size(); ++i) {
        if (series.values[i] == standard) return series.times[i];
    }
    return series.times.front();
}

Panel panelOf(const Quantity& quantity, const std::map<std::string, Series>& methods) {
    Panel panel;
    panel.title = quantity.title;
    std::vector<double> allValues = {0.0};
    std::vector<double> allTimes = {0.0};
    for (const auto& [method, series] : methods) {
        Curve curve;
        curve.x = series.values;
        for (const double time : series.times) curve.y.push_back(time / timeAtStandard(series, quantity.standard));
        curve.label = method.substr(std::string_view("Cal2D").size());  // the names take the panel's width
        curve.colour = kColours[panel.curves.size() % kColours.size()];
        allValues.insert(allValues.end(), curve.x.begin(), curve.x.end());
        allTimes.insert(allTimes.end(), curve.y.begin(), curve.y.end());
        panel.curves.push_back(curve);
    }
    panel.x = examples::axisAround(quantity.axis, allValues, 1.0);
    panel.y = examples::axisAround("time, relative", allTimes, 1.0);
    return panel;
}

void plot(const std::string& from, const std::string& to) {
    constexpr int kWidth = 1000;
    constexpr int kHeight = 1140;
    constexpr int kLeft = 80;
    constexpr int kRight = 980;
    constexpr int kTop = 40;
    constexpr int kPanelHeight = 270;
    constexpr int kPitch = 375;
    const Table table = readTable(from);
    std::vector<Panel> panels;
    for (const Quantity& quantity : kQuantities) {
        const auto methods = table.find(quantity.name);
        if (methods == table.end()) throw Failure(from + ": nothing about " + quantity.name);
        Panel panel = panelOf(quantity, methods->second);
        panel.left = kLeft;
        panel.right = kRight;
        panel.top = kTop + kPitch * static_cast<int>(panels.size());
        panel.bottom = panel.top + kPanelHeight;
        panels.push_back(panel);
    }
    examples::writePng(to, examples::drawPlot(kWidth, kHeight, panels));
}

}  // namespace

int main(int argc, char** argv) {
    std::string from;
    std::string to;
    return examples::runProgram(
        "plot_scaling", "Draws the table of the scaling program.", argc, argv,
        [&](CLI::App& app) {
            app.add_option("table", from, "What scaling printed")->option_text("CSV")->required();
            app.add_option("picture", to, "The picture to write")->option_text("PNG")->required();
        },
        [&] { plot(from, to); });
}
