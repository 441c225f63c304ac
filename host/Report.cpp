// Report.cpp: prints a run's summary and writes it as JSON.
#include "Report.h"

#include <cstdio>
#include <fstream>
#include <sstream>

namespace tvpmhost {

namespace {

std::string Joined(const std::vector<std::string>& items) {
    std::string out;
    for (auto& s : items) out += (out.empty() ? "" : ", ") + s;
    return out;
}

std::vector<std::string> Listed(const std::set<std::string>& items) { return {items.begin(), items.end()}; }

void PrintRegistrations(const PluginSummary& p) {
    auto line = [](const char* what, const std::vector<std::string>& items) {
        if (!items.empty()) printf("      %-12s %zu: %s\n", what, items.size(), Joined(items).c_str());
    };
    line("data items", Listed(p.dataItems));
    line("commands", p.commands);
    line("menus", p.menus);
    line("menu items", p.menuItems);
    line("windows", p.windows);
    line("hot keys", Listed(p.hotKeys));
    if (p.FlightLoopCalls()) printf("      %-12s %ld calls\n", "flight loops", p.FlightLoopCalls());
}

void PrintTimings(const RunSummary& s) {
    bool any = false;
    for (auto& [path, p] : s.plugins) any = any || !p.timings.empty();
    if (!any) return;
    printf("\nCallback time per plugin and category (microseconds)\n");
    printf("  %-24s %-24s %8s %10s %10s\n", "plugin", "category", "calls", "mean", "max");
    for (auto& [path, p] : s.plugins)
        for (auto& [category, t] : p.timings)
            printf("  %-24s %-24s %8ld %10.1f %10.1f\n", p.name.c_str(), CategoryName(category),
                   t.calls, t.MeanUs(), t.maxUs);
}

void PrintProblems(const RunSummary& s) {
    auto block = [](const char* title, const std::vector<std::string>& lines) {
        if (lines.empty()) return;
        printf("\n%s (%zu)\n", title, lines.size());
        for (auto& l : lines) printf("  %s\n", l.c_str());
    };
    std::vector<std::string> failed, left;
    for (auto& f : s.failed) failed.push_back(f.path + ": " + f.reason);
    for (auto& l : s.leftBehind)
        left.push_back(l.owner + ": " + l.kind + " '" + l.name + "' " +
                       (l.releasedBy.empty() ? "still in the simulator" : "released only by TVPM's clean-up"));
    block("Plugins that failed to load", failed);
    block("Loader warnings", s.loaderWarnings);
    block("Plugin warnings", s.pluginWarnings);
    block("Alerts", s.alerts);
    block("Left behind at unload", left);
    block("TVPM assertion failures", s.assertions);
    block("Sound left in the engine after unload", s.soundLeftovers);
}

std::string TimingsJson(const PluginSummary& p) {
    std::ostringstream o;
    o << "[";
    bool first = true;
    for (auto& [category, t] : p.timings) {
        o << (first ? "" : ",") << "{\"category\":" << JsonString(CategoryName(category))
          << ",\"calls\":" << t.calls << ",\"meanUs\":" << t.MeanUs() << ",\"maxUs\":" << t.maxUs << "}";
        first = false;
    }
    o << "]";
    return o.str();
}

std::string PluginJson(const PluginSummary& p) {
    std::ostringstream o;
    o << "{\"path\":" << JsonString(p.path) << ",\"name\":" << JsonString(p.name)
      << ",\"signature\":" << JsonString(p.signature) << ",\"description\":" << JsonString(p.description)
      << ",\"aircraft\":" << (p.aircraft ? "true" : "false") << ",\"registered\":{"
      << "\"dataItems\":" << JsonList(Listed(p.dataItems)) << ",\"commands\":" << JsonList(p.commands)
      << ",\"menus\":" << JsonList(p.menus) << ",\"menuItems\":" << JsonList(p.menuItems)
      << ",\"windows\":" << JsonList(p.windows) << ",\"hotKeys\":" << JsonList(Listed(p.hotKeys))
      << ",\"flightLoopCalls\":" << p.FlightLoopCalls() << "},\"timings\":" << TimingsJson(p) << "}";
    return o.str();
}

}  // namespace

std::string JsonString(const std::string& text) {
    std::string out = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            char buf[8];
            snprintf(buf, sizeof buf, "\\u%04x", c);
            out += buf;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

std::string JsonList(const std::vector<std::string>& items) {
    std::string out = "[";
    for (size_t i = 0; i < items.size(); ++i) out += (i ? "," : "") + JsonString(items[i]);
    return out + "]";
}

void PrintSummary(const RunSummary& s) {
    printf("\nTVPM headless run: %ld frames at %g fps\n", s.frames, s.fps);
    printf("  library   %s\n  simulator %s\n", s.library.c_str(), s.root.c_str());
    if (s.hostDataItems) printf("  published %d simulator data items\n", s.hostDataItems);
    if (!s.startError.empty()) printf("\nStart-up failed: %s\n", s.startError.c_str());
    printf("\nPlugins loaded: %zu, failed: %zu\n", s.plugins.size(), s.failed.size());
    for (auto& [path, p] : s.plugins) {
        printf("  %-24s %s%s\n", p.name.c_str(), p.signature.c_str(), p.aircraft ? "  (aircraft)" : "");
        printf("      %-12s %s\n", "file", p.path.c_str());
        PrintRegistrations(p);
    }
    if (!s.sound.empty()) {
        printf("\nSound per plugin channel group\n");
        for (auto& line : s.sound) printf("  %s\n", line.c_str());
    }
    PrintTimings(s);
    PrintProblems(s);
    printf("\n%s\n", s.Ok() ? "Result: OK" : "Result: FAILED");
}

bool WriteJsonReport(const RunSummary& s, const std::string& file, std::string& error) {
    std::ofstream out(file);
    if (!out) {
        error = "cannot write " + file;
        return false;
    }
    std::vector<std::string> failed, left;
    for (auto& f : s.failed)
        failed.push_back("{\"path\":" + JsonString(f.path) + ",\"reason\":" + JsonString(f.reason) + "}");
    for (auto& l : s.leftBehind)
        left.push_back("{\"plugin\":" + JsonString(l.owner) + ",\"kind\":" + JsonString(l.kind) +
                       ",\"name\":" + JsonString(l.name) + ",\"releasedBy\":" + JsonString(l.releasedBy) + "}");
    std::vector<std::string> plugins;
    for (auto& [path, p] : s.plugins) plugins.push_back(PluginJson(p));
    auto raw = [](const std::vector<std::string>& items) {
        std::string o = "[";
        for (size_t i = 0; i < items.size(); ++i) o += (i ? "," : "") + items[i];
        return o + "]";
    };
    out << "{\"mode\":\"run\",\"ok\":" << (s.Ok() ? "true" : "false") << ",\"library\":" << JsonString(s.library)
        << ",\"root\":" << JsonString(s.root) << ",\"frames\":" << s.frames << ",\"fps\":" << s.fps
        << ",\"startError\":" << JsonString(s.startError) << ",\"plugins\":" << raw(plugins)
        << ",\"failed\":" << raw(failed) << ",\"loaderWarnings\":" << JsonList(s.loaderWarnings)
        << ",\"pluginWarnings\":" << JsonList(s.pluginWarnings) << ",\"alerts\":" << JsonList(s.alerts)
        << ",\"leftBehind\":" << raw(left) << ",\"assertions\":" << JsonList(s.assertions)
        << ",\"sound\":" << JsonList(s.sound) << ",\"soundLeftovers\":" << JsonList(s.soundLeftovers) << "}\n";
    return static_cast<bool>(out);
}

}  // namespace tvpmhost
