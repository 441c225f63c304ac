// CheckReports.cpp: prints the check's results and writes them as JSON and JUnit XML.
#include "CheckReports.h"

#include <cstdio>
#include <fstream>
#include <sstream>

#include "Report.h"

namespace tvpmhost {

namespace {

const char* const kStatusWords[] = {"all passed", "a check failed", "usage error", "a plugin crashed",
                                    "a plugin hung"};

std::string FindingsJson(const CheckResult& r, const std::string& check) {
    std::string out = "[";
    for (auto& f : r.findings)
        if (f.check == check)
            out += std::string(out.size() > 1 ? "," : "") + "{\"step\":" + JsonString(f.step) +
                   ",\"outcome\":\"" + OutcomeName(f.outcome) + "\",\"message\":" + JsonString(f.message) + "}";
    return out + "]";
}

std::string TimingJson(const CheckResult& r) {
    std::string out = "[";
    for (auto& row : r.timing) {
        const std::vector<std::string> f = Fields(row);
        if (f.size() < 7) continue;
        out += std::string(out.size() > 1 ? "," : "") + "{\"category\":" + JsonString(f[0]) + ",\"calls\":" + f[1] +
               ",\"totalUs\":" + f[2] + ",\"meanUs\":" + f[3] + ",\"p99Us\":" + f[4] + ",\"maxUs\":" + f[5] +
               ",\"frameBudgetShare\":" + f[6] + "}";
    }
    return out + "]";
}

}  // namespace

std::string XmlEscaped(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
            case '&': out += "&amp;"; break;
            case '<': out += "&lt;"; break;
            case '>': out += "&gt;"; break;
            case '"': out += "&quot;"; break;
            default: out += (static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t') ? ' ' : c;
        }
    }
    return out;
}

void PrintResult(const CheckResult& r, const CheckSelection& s, bool strict) {
    printf("%s  %s%s\n", r.Passed(s, strict) ? "PASS" : "FAIL", r.name.c_str(), r.unit.aircraft ? " (aircraft)" : "");
    printf("      %s\n", r.unit.source.c_str());
    int counts[static_cast<int>(Outcome::kTimeout) + 1] = {};
    for (auto& c : AllChecks()) ++counts[static_cast<int>(r.Of(c.name, s))];
    printf("      %zu checks:", AllChecks().size());
    for (int o = 0; o <= static_cast<int>(Outcome::kTimeout); ++o)
        if (counts[o]) printf(" %d %s", counts[o], OutcomeName(static_cast<Outcome>(o)));
    printf("\n");
    for (auto& f : r.findings)
        if (s.Selected(f.check) || f.outcome >= Outcome::kCrash)
            printf("      %-7s %-16s [%s] %s\n", f.outcome == Outcome::kPass ? "note" : OutcomeName(f.outcome),
                   f.check.c_str(), f.step.c_str(), f.message.c_str());
    for (auto& row : r.timing) {
        const std::vector<std::string> f = Fields(row);
        if (f.size() >= 7)
            printf("      timing  %-16s %s calls, total %s us, mean %s us, p99 %s us, max %s us, %.2f%% of the "
                   "frame budget\n",
                   f[0].c_str(), f[1].c_str(), f[2].c_str(), f[3].c_str(), f[4].c_str(), f[5].c_str(),
                   100 * std::stod(f[6]));
    }
}

void PrintTotals(const std::vector<CheckResult>& results, const CheckSelection& s, bool strict, int exitStatus) {
    size_t passed = 0;
    for (auto& r : results) passed += r.Passed(s, strict);
    printf("\n%zu of %zu plugins passed%s: %s (exit status %d)\n", passed, results.size(), strict ? " (strict)" : "",
           kStatusWords[exitStatus], exitStatus);
}

bool WriteCheckJson(const std::vector<CheckResult>& results, const ReportContext& c, const std::string& file) {
    std::ofstream out(file);
    const CheckSelection& s = c.params.selection;
    out << "{\"schemaVersion\":2,\"mode\":\"check\",\"level\":" << s.level << ",\"strict\":" << (c.strict ? "true" : "false")
        << ",\"ok\":" << (c.exitStatus == 0 ? "true" : "false") << ",\"exitStatus\":" << c.exitStatus
        << ",\"seed\":" << c.params.seed << ",\"fuzzRounds\":" << c.params.fuzzRounds
        << ",\"timeoutSeconds\":" << c.params.timeoutSeconds << ",\"fps\":" << c.params.fps << ",\"plugins\":[";
    for (size_t i = 0; i < results.size(); ++i) {
        const CheckResult& r = results[i];
        out << (i ? "," : "") << "{\"source\":" << JsonString(r.unit.source) << ",\"name\":" << JsonString(r.name)
            << ",\"library\":" << JsonString(r.library) << ",\"aircraft\":" << (r.unit.aircraft ? "true" : "false")
            << ",\"passed\":" << (r.Passed(s, c.strict) ? "true" : "false") << ",\"seconds\":" << r.seconds
            << ",\"checks\":[";
        bool first = true;
        for (auto& check : AllChecks()) {
            out << (first ? "" : ",") << "{\"name\":" << JsonString(check.name) << ",\"level\":" << check.level
                << ",\"outcome\":\"" << OutcomeName(r.Of(check.name, s)) << "\",\"findings\":"
                << FindingsJson(r, check.name) << "}";
            first = false;
        }
        out << "],\"timing\":" << TimingJson(r) << "}";
    }
    out << "]}\n";
    return static_cast<bool>(out);
}

bool WriteJUnit(const std::vector<CheckResult>& results, const ReportContext& c, const std::string& file) {
    std::ofstream out(file);
    const CheckSelection& s = c.params.selection;
    std::ostringstream suites;
    int tests = 0, failures = 0, errors = 0, skipped = 0;
    double seconds = 0;
    for (auto& r : results) {
        int t = 0, f = 0, e = 0, k = 0;
        std::ostringstream cases;
        for (auto& check : AllChecks()) {
            const Outcome o = r.Of(check.name, s);
            ++t;
            cases << "    <testcase name=\"" << XmlEscaped(check.name) << "\" classname=\"" << XmlEscaped(r.name)
                  << "\" time=\"0\">";
            std::string text;
            for (auto& x : r.findings)
                if (x.check == check.name) text += "[" + x.step + "] " + OutcomeName(x.outcome) + ": " + x.message + "\n";
            const bool fails = o == Outcome::kFail || (o == Outcome::kWarn && c.strict);
            if (o == Outcome::kSkipped) {
                ++k;
                cases << "<skipped message=\"not selected at level " << s.level << "\"/>";
            } else if (o == Outcome::kCrash || o == Outcome::kTimeout) {
                ++e;
                cases << "<error type=\"" << OutcomeName(o) << "\" message=\"" << XmlEscaped(text.substr(0, text.find('\n')))
                      << "\">" << XmlEscaped(text) << "</error>";
            } else if (fails) {
                ++f;
                cases << "<failure type=\"" << OutcomeName(o) << "\" message=\""
                      << XmlEscaped(text.substr(0, text.find('\n'))) << "\">" << XmlEscaped(text) << "</failure>";
            } else if (!text.empty()) {
                cases << "<system-out>" << XmlEscaped(text) << "</system-out>";
            }
            cases << "</testcase>\n";
        }
        suites << "  <testsuite name=\"" << XmlEscaped(r.name) << "\" tests=\"" << t << "\" failures=\"" << f
               << "\" errors=\"" << e << "\" skipped=\"" << k << "\" time=\"" << r.seconds << "\">\n"
               << cases.str() << "  </testsuite>\n";
        tests += t;
        failures += f;
        errors += e;
        skipped += k;
        seconds += r.seconds;
    }
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"tvpm-host --check\" tests=\"" << tests
        << "\" failures=\"" << failures << "\" errors=\"" << errors << "\" skipped=\"" << skipped << "\" time=\""
        << seconds << "\">\n"
        << suites.str() << "</testsuites>\n";
    return static_cast<bool>(out);
}

}  // namespace tvpmhost
