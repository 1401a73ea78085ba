// MeasureText.cpp - the questions asked, and the answers judged by the tables.
#include "builder/MeasureText.h"

#include "builder/MeasureTextQuestions.h"
#include "dic/AddrDic.h"
#include "text/AddressText.h"

#include <algorithm>
#include <string>
#include <utility>

namespace qe {

namespace {

constexpr unsigned WANTED_SURE = 9995; // at most one of 2,000 is wrong

std::string TextOf(char const* psz) {
    return psz == nullptr ? "" : psz;
}

// "東京都|千代田区|丸の内|... 1000005 folded (2)": place, sureness and number of candidates.
std::string FoundPlace(QETEXTREADING const& reading) {
    QETEXTPLACE const& place = reading.place;
    std::string str = TextOf(place.pszPref) + "|" + TextOf(place.pszCity) + "|" + TextOf(place.pszTown) + "|" +
                      TextOf(place.pszArea) + TextOf(place.pszBuilding) + TextOf(place.pszFloor) + " " +
                      TextOf(place.pszPostCode) + " ";
    str += qeadrs::SurenessName(reading.nSureness);
    return str.append(" (").append(std::to_string(reading.nCandidate)).append(")");
}

struct CBoundDic : CAddrDic {
    explicit CBoundDic(CDictionaryFile const& file) { SetDictionary(file.Bytes().data()); }
};

class CTextMeasurement {
  public:
    CTextMeasurement(CDictionaryFile const& file, CTextQuestions questions)
        : m_dic(file), m_text(m_dic), m_questions(std::move(questions)) {}

    std::vector<CTextFigure> Measure() {
        m_sure.strKey = "text_sure";
        m_sure.strQuestion = "over all of the above: no wrong town returned as sure";
        m_sure.nWanted = WANTED_SURE;
        m_sure.bExpected = true;
        for (CTextClass const& asked : m_questions.vClass) MeasureClass(asked);
        m_vFigure.push_back(std::move(m_sure));
        return std::move(m_vFigure);
    }

  private:
    void MeasureClass(CTextClass const& asked) {
        CTextFigure figure;
        figure.strKey = asked.strKey;
        figure.strQuestion = asked.strName;
        figure.nWanted = asked.nWanted;
        figure.nAsked = asked.vQuestion.size();
        figure.bExpected = asked.bExpected;
        m_sure.nAsked += figure.nAsked;
        for (CTextQuestion const& question : asked.vQuestion) {
            QETEXTREADING const& reading = m_text.Read(question.strText);
            figure.nSeveral += question.bSeveral;
            figure.nUnknown += question.vTown.empty();
            bool const bOther = IsAnother(question, reading.place);
            bool const bRight = asked.bCandidates ? !bOther && HasCandidate(question, reading)
                                                  : question.codes.count(TextOf(reading.place.pszPostCode)) != 0;
            if (!bRight)
                figure.vMiss.push_back({question.strText, Cause(question, reading, bOther), FoundPlace(reading)});
            if (reading.nSureness < QETEXT_SUPPLIED || !bOther) continue;
            ++figure.nSureWrong;
            m_sure.vMiss.push_back({question.strText, asked.strName, FoundPlace(reading)});
        }
        m_sure.nSureWrong += figure.nSureWrong;
        m_vFigure.push_back(std::move(figure));
    }

    bool IsAnother(CTextQuestion const& question, QETEXTPLACE const& place) const {
        return m_questions.IsAnother(question, {TextOf(place.pszPref), TextOf(place.pszCity), TextOf(place.pszTown)});
    }

    static bool HasCandidate(CTextQuestion const& question, QETEXTREADING const& reading) {
        return std::any_of(
            reading.pCandidate, reading.pCandidate + reading.nCandidate,
            [&](QETEXTPLACE const& place) { return question.codes.count(TextOf(place.pszPostCode)) != 0; });
    }

    static std::string Cause(CTextQuestion const& question, QETEXTREADING const& reading, bool bOther) {
        QETEXTPLACE const& place = reading.place;
        if (question.vTown.empty()) return "the table has no such town";
        if (!bOther) return TextOf(place.pszPostCode).empty() ? "the town, without a code" : "the town, another code";
        CTownKey const& town = question.vTown.front();
        if (reading.nSureness == QETEXT_SEVERAL) return "another one of several";
        if (TextOf(place.pszPref).empty()) return "nothing found";
        if (TextOf(place.pszPref) != town.strPref) return "another prefecture";
        if (TextOf(place.pszCity).empty()) return "no city found";
        if (TextOf(place.pszCity) != town.strCity) return "another city";
        return TextOf(place.pszTown).empty() ? "no town found" : "another town";
    }

    CBoundDic m_dic;
    qeadrs::CAddressText m_text;
    CTextQuestions m_questions;
    std::vector<CTextFigure> m_vFigure;
    CTextFigure m_sure;
};

} // namespace

std::vector<CTextFigure> MeasureText(CDictionaryFile const& file, CMeasuredTables const& tables) {
    return CTextMeasurement(file, TextQuestions(tables)).Measure();
}

} // namespace qe
