// CheckReport.cpp - what the checker found, for people and for programs.
#include "builder/Check.h"

#include <ostream>

#include <nlohmann/json.hpp>

namespace qe {

void PrintReport(CCheckReport const& report, bool bJson, std::ostream& out) {
    if (bJson) {
        nlohmann::ordered_json json = {{"sound", report.IsSound()}, {"violations", nlohmann::ordered_json::array()}};
        for (size_t n = 0; n < CHECK_RULE_COUNT; ++n)
            json["counts"][CHECK_RULES[n].pszName] = report.CountOf(static_cast<ECheckRule>(n));
        for (CViolation const& v : report.Violations())
            json["violations"].push_back({{"rule", CHECK_RULES[static_cast<size_t>(v.nRule)].pszName},
                                          {"where", v.strWhere},
                                          {"path", v.strPath},
                                          {"what", v.strWhat}});
        json["remarks"] = report.Remarks();
        out << json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
        return;
    }
    for (CViolation const& v : report.Violations())
        out << CHECK_RULES[static_cast<size_t>(v.nRule)].pszName << ": " << v.strWhere
            << (v.strPath.empty() ? "" : " (" + v.strPath + ")") << ' ' << v.strWhat << '\n';
    for (size_t n = 0; n < CHECK_RULE_COUNT; ++n)
        if (size_t const nCount = report.CountOf(static_cast<ECheckRule>(n)); nCount != 0)
            out << nCount << " against " << CHECK_RULES[n].pszName << ": " << CHECK_RULES[n].pszText << '\n';
    for (std::string const& strRemark : report.Remarks()) out << strRemark << '\n';
    if (report.IsSound()) out << "sound: all " << CHECK_RULE_COUNT << " rules hold\n";
}

} // namespace qe
