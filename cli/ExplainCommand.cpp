// ExplainCommand.cpp - `qeadrs explain`: the steps in which a text was read, and what came of them.
#include "cli/ExplainCommand.h"

#include "cli/Command.h"
#include "cli/Reading.h"
#include "cli/Text.h"
#include "text/AddressText.h"

#include <optional>

#include <nlohmann/json.hpp>

namespace qe {

namespace {

using CJson = nlohmann::ordered_json;

class CExplainCommand : public CCommand {
  public:
    explicit CExplainCommand(CCommonOptions const& common) : CCommand(common, Columns(common.bJson), "address") {}

  private:
    static std::vector<std::string> Columns(bool bJson) {
        if (!bJson) return {"step", "text", "what"};
        return {"text", "postal_code", "old_code", "prefecture", "city", "town", "rest"};
    }

    // The text as it is: what is told of it counts its bytes.
    std::string ReadQuery(std::string const& strText) const override {
        ReadAddressText(strText);
        return strText;
    }

    void Prepare() override { m_reader.emplace(Dictionary().Class()); }

    void Answer(std::string const& strText) override {
        std::vector<qeadrs::CTextStep> vStep;
        CReading const reading(Dictionary().Dic(), strText, m_reader->Explain(Trim(strText), vStep, QETEXT_RENEW));
        if (!reading.HasCode()) SetNotFound();
        if (Form() == EForm::Json)
            PrintObject(strText, reading, vStep);
        else
            PrintSteps(strText, reading, vStep);
    }

    void PrintSteps(std::string const& strText, CReading const& reading,
                    std::vector<qeadrs::CTextStep> const& vStep) {
        Print({"text", Quote(Trim(strText)), ""});
        for (qeadrs::CTextStep const& step : vStep)
            Print({step.strStep, step.span.nLength == 0 ? "" : Quote(reading.Part(step.span)), step.strWhat});
        Print({"place", "", reading.HasCode() ? reading.Describe(reading.Place()) : "none with a code"});
    }

    void PrintObject(std::string const& strText, CReading const& reading,
                     std::vector<qeadrs::CTextStep> const& vStep) {
        CRow row = reading.Columns();
        row.insert(row.begin(), strText);
        CJson steps = CJson::array();
        for (qeadrs::CTextStep const& step : vStep)
            steps.push_back({{"step", step.strStep},
                             {"text", std::string(reading.Part(step.span))},
                             {"offset", reading.Offset(step.span)},
                             {"length", step.span.nLength},
                             {"what", step.strWhat}});
        std::string const strSteps = steps.dump(-1, ' ', false, CJson::error_handler_t::replace);
        Print(std::move(row), {{}, reading.Members() + ",\"steps\":" + strSteps});
    }

    std::optional<qeadrs::CAddressText> m_reader;
};

} // namespace

EExit RunExplain(CExplainOptions const& options, CCommonOptions const& common) {
    return CExplainCommand(common).Run(options.vText);
}

} // namespace qe
