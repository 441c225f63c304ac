// CheckHtml.cpp: the check's self-contained HTML page: results per plugin and a chart of callback time per frame.
#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "CheckReports.h"

namespace tvpmhost {

namespace {

constexpr int kChartWidth = 720, kChartHeight = 200;
const char* const kColours[] = {"#4e79a7", "#f28e2b", "#e15759", "#76b7b2", "#59a14f", "#edc948", "#b07aa1"};

// Category -> frame -> microseconds.
using Series = std::map<std::string, std::map<long, double>>;

Series SeriesOf(const CheckResult& r) {
    Series s;
    for (auto& row : r.frameSeries) {
        std::istringstream in(row);
        std::string category;
        long frame = 0;
        double us = 0;
        std::getline(in, category, '\t');
        in >> frame >> us;
        s[category][frame] += us;
    }
    return s;
}

// Stacked areas per category, newest category on top, and the frame budget as a line.
std::string Chart(const CheckResult& r, double fps) {
    const Series series = SeriesOf(r);
    const long frames = std::max(1L, r.frameCount);
    const double budget = 1e6 / fps;
    std::map<long, double> stacked;
    double top = budget * 1.1;
    for (auto& [category, byFrame] : series)
        for (auto& [frame, us] : byFrame) top = std::max(top, stacked[frame] += us);
    auto X = [&](long frame) { return static_cast<double>(frame) * kChartWidth / frames; };
    auto Y = [&](double us) { return kChartHeight - us * kChartHeight / top; };
    std::ostringstream svg;
    svg << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << kChartWidth << "\" height=\"" << kChartHeight
        << "\" class=\"chart\">";
    std::map<long, double> base;
    size_t colour = 0;
    for (auto& [category, byFrame] : series) {
        // The band's upper edge left to right, then its lower edge back.
        std::ostringstream upper;
        std::vector<std::string> lower;
        for (long f = 0; f <= frames; ++f) {
            const auto it = byFrame.find(f);
            const double below = base[f], above = below + (it == byFrame.end() ? 0 : it->second);
            upper << X(f) << "," << Y(above) << " ";
            lower.push_back(std::to_string(X(f)) + "," + std::to_string(Y(below)));
            base[f] = above;
        }
        svg << "<polygon class=\"series\" data-category=\"" << XmlEscaped(category) << "\" fill=\""
            << kColours[colour++ % std::size(kColours)] << "\" points=\"" << upper.str();
        for (auto it = lower.rbegin(); it != lower.rend(); ++it) svg << *it << (it + 1 == lower.rend() ? "" : " ");
        svg << "\"><title>" << XmlEscaped(category) << "</title></polygon>";
    }
    svg << "<line class=\"budget\" x1=\"0\" x2=\"" << kChartWidth << "\" y1=\"" << Y(budget) << "\" y2=\"" << Y(budget)
        << "\" stroke=\"#000\" stroke-dasharray=\"6 3\"><title>frame budget " << budget << " us</title></line></svg>";
    return svg.str();
}

}  // namespace

bool WriteHtml(const std::vector<CheckResult>& results, const ReportContext& c, const std::string& file) {
    std::ofstream out(file);
    const CheckSelection& s = c.params.selection;
    out << "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>tvpm-host --check</title><style>"
           "body{font-family:sans-serif;margin:2em}td,th{padding:2px 8px;text-align:left;vertical-align:top}"
           ".pass{color:#2a7}.warn{color:#b80}.fail,.crash,.timeout{color:#c22}.skipped{color:#999}"
           "pre{margin:0;white-space:pre-wrap}</style></head><body>\n"
        << "<h1>Plugin check</h1><p>Level " << s.level << ", seed " << c.params.seed << ", " << c.params.fps
        << " fps (frame budget " << 1e6 / c.params.fps << " us). Exit status " << c.exitStatus << ".</p>\n";
    for (auto& r : results) {
        const bool passed = r.Passed(s, c.strict);
        out << "<section class=\"plugin\"><h2 class=\"" << (passed ? "pass" : "fail") << "\">"
            << (passed ? "PASS " : "FAIL ") << XmlEscaped(r.name) << "</h2><p>" << XmlEscaped(r.unit.source)
            << "</p>\n<table><tr><th>check</th><th>outcome</th><th>findings</th></tr>\n";
        for (auto& check : AllChecks()) {
            const Outcome o = r.Of(check.name, s);
            out << "<tr><td>" << check.name << "</td><td class=\"" << OutcomeName(o) << "\">" << OutcomeName(o)
                << "</td><td>";
            for (auto& f : r.findings)
                if (f.check == check.name) out << "<pre>[" << XmlEscaped(f.step) << "] " << XmlEscaped(f.message) << "</pre>";
            out << "</td></tr>\n";
        }
        out << "</table>\n<h3>Callback time per frame, stacked by category</h3>\n" << Chart(r, c.params.fps)
            << "\n</section>\n";
    }
    out << "</body></html>\n";
    return static_cast<bool>(out);
}

}  // namespace tvpmhost
