// CheckReports.h: the check's results on the terminal, as JSON, as JUnit XML and as an HTML page.
#pragma once

#include <string>
#include <vector>

#include "CheckMode.h"

namespace tvpmhost {

struct ReportContext {
    const CheckParams& params;
    bool strict;
    int exitStatus;
};

void PrintResult(const CheckResult& r, const CheckSelection& s, bool strict);
void PrintTotals(const std::vector<CheckResult>& results, const CheckSelection& s, bool strict, int exitStatus);
bool WriteCheckJson(const std::vector<CheckResult>& results, const ReportContext& c, const std::string& file);
bool WriteJUnit(const std::vector<CheckResult>& results, const ReportContext& c, const std::string& file);
bool WriteHtml(const std::vector<CheckResult>& results, const ReportContext& c, const std::string& file);

// Text escaped for XML and HTML.
std::string XmlEscaped(const std::string& text);

}  // namespace tvpmhost
