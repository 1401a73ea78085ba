// BatchCommand.cpp - `qeadrs batch`: reads, has the threads answer and write, and tells how it went.
#include "cli/BatchCommand.h"

#include "cli/BatchFiles.h"
#include "cli/BatchPool.h"
#include "cli/BatchReader.h"
#include "cli/BatchStop.h"
#include "cli/BatchWorker.h"
#include "cli/BatchWriter.h"
#include "cli/Dictionary.h"
#include "cli/Text.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <thread>
#include <utility>

#include <CLI/CLI.hpp>

namespace qe {

namespace {

constexpr char BATCH_HELP[] =
    "Behind every line comes what the command prints (of a code's addresses the first, and their count) and the "
    "status. Malformed lines go to the rejects, else they come out as they are.\n"
    "Exit: 0 all looked up, found or not, 1 some malformed, 2 usage, 3 no dictionary, 4 system error.";

size_t CountJobs(CBatchOptions const& options) {
    return options.nJobs != 0 ? options.nJobs : std::max(1u, std::thread::hardware_concurrency());
}

class CBatch {
  public:
    explicit CBatch(CBatchOptions const& options)
        : m_options(Checked(options)),
          m_vColumn(BatchColumns(options.question, options.strPrefix)),
          m_form(MakeBatchForm(options.nForm, options.strColumn, options.bHeader, m_vColumn)),
          m_dictionary(options.strDic),
          m_input(OpenBatchInput(options.strFile)),
          m_bShown(options.bProgress && !options.bQuiet) {
        OpenRejects();
        m_writer.emplace(m_output, m_rejects ? &*m_rejects : nullptr, CBatchProgress(m_bShown, m_input.Remaining()));
    }

    EExit Run() {
        if (!m_options.bQuiet && isatty(m_input.Handle()) != 0) Remark("one record per line, Ctrl-D ends");
        try {
            Filter();
        } catch (...) {
            m_writer->Clear();
            throw;
        }
        m_writer->Clear();
        if (!m_options.bQuiet) RemarkCounts();
        return m_writer->Counts().nMalformed == 0 ? EXIT_FOUND : EXIT_NOT_FOUND;
    }

  private:
    static CBatchOptions const& Checked(CBatchOptions const& options) {
        if (options.question.bReading && !options.question.IsRead())
            throw CFailure(EXIT_USAGE, "--reading tells of addresses, and a postal code is none.");
        return options;
    }

    void OpenRejects() {
        if (m_input.IsSame(m_output)) throw CFailure(EXIT_USAGE, "the output is the input itself.");
        if (!m_options.strRejects) return;
        m_rejects.emplace(OpenBatchRejects(*m_options.strRejects));
        if (m_rejects->IsSame(m_input) || m_rejects->IsSame(m_output))
            throw CFailure(EXIT_USAGE, "--rejects names the input or the output itself.");
        if (m_dictionary.Mapped().Is(*m_options.strRejects))
            throw CFailure(EXIT_USAGE, "--rejects names the dictionary.");
    }

    void Filter() {
        CBatchReader reader(m_input.Handle(), m_options.nForm == EBatchForm::Csv, m_stop);
        CBatchWork next;
        bool bMore = reader.Next(next.chunk);
        TakeHeader(next);
        if (m_rejects) m_rejects->Truncate(); // not before it is sure that the call is right
        size_t const nJobs = CountJobs(m_options);
        // For each thread one that it answers, and one that waits to be answered or written.
        CBatchPool pool(
            2 * nJobs, [this](CBatchWork const& work) { m_writer->Write(work); }, [this] { m_stop.Request(); });
        for (size_t i = 0; i < nJobs; ++i) pool.Start(Worker());
        while (bMore) {
            CBatchWork* const pWork = pool.Free();
            if (pWork == nullptr) break;
            std::swap(*pWork, next);
            pool.Give();
            bMore = reader.Next(next.chunk);
        }
        pool.Finish();
    }

    CBatchPool::CStep Worker() const {
        auto pWorker =
            std::make_shared<CBatchWorker>(*m_form, CBatchAnswerer(m_options.question, m_dictionary.Mapped()),
                                           m_vColumn.size(), m_strHeader, m_rejects.has_value());
        return [pWorker = std::move(pWorker)](CBatchWork& work) { pWorker->Answer(work); };
    }

    // The first record names the columns.
    void TakeHeader(CBatchWork& work) {
        std::string_view strRest = work.chunk.strText;
        for (CBatchRecord const& record : work.chunk.vRecord) {
            if (!m_options.bHeader) return;
            std::string_view const strRecord = strRest.substr(0, record.nSize);
            strRest.remove_prefix(record.nSize);
            if (record.nKind == EBatchRecord::ByteOrderMark) continue;
            if (record.nKind != EBatchRecord::Whole || strRecord.find('\0') != std::string_view::npos)
                throw CFailure(EXIT_USAGE, "the header is malformed.");
            m_strHeader = m_form->ReadHeader(strRecord);
            work.bHeader = true;
            return;
        }
    }

    static void Remark(std::string const& strText) { std::cerr << "qeadrs: " << strText << '\n'; }

    void RemarkCounts() const {
        CBatchCounts const& counts = m_writer->Counts();
        if (m_bShown)
            Remark(Grouped(counts.nRecords) + " records, " + Grouped(counts.nFound) + " found, " +
                   Grouped(counts.nRecords - counts.nFound - counts.nMalformed) + " not found");
        if (counts.nMalformed == 0) return;
        Remark(Grouped(counts.nMalformed) + " of " + Grouped(counts.nRecords) +
               " records are malformed; they are in " + m_options.strRejects.value_or("the output as they were"));
    }

    CBatchOptions const& m_options;
    std::vector<CBatchColumn> m_vColumn;
    std::unique_ptr<CBatchForm> m_form;
    std::string m_strHeader;
    CDictionaryFile m_dictionary;
    CBatchFile m_input;
    CBatchFile m_output{STDOUT_FILENO, "the output"};
    std::optional<CBatchFile> m_rejects;
    CBatchStop m_stop;
    bool m_bShown;
    std::optional<CBatchWriter> m_writer;
};

template <typename T>
using CWords = std::vector<std::pair<std::string, T>>;

// Makes a word its number, as the parser's own transformer does, which takes the numbers themselves as well.
// REQUIRES: vWord lives as long as the parser.
template <typename T>
CLI::Validator OneOf(CWords<T> const& vWord) {
    return {[&vWord](std::string& strText) -> std::string {
                std::string strWords;
                for (auto const& [strWord, nValue] : vWord) {
                    if (strWord == strText) {
                        strText = std::to_string(static_cast<int>(nValue));
                        return "";
                    }
                    strWords += (strWords.empty() ? "" : ", ") + strWord;
                }
                return Quote(strText) + " is none of " + strWords + ".";
            },
            ""};
}

} // namespace

bool CBatchOptions::IsProgressSeen() {
    return isatty(STDERR_FILENO) != 0 && isatty(STDOUT_FILENO) == 0;
}

EExit RunBatch(CBatchOptions const& options) try {
    EExit nStatus = CBatch(options).Run();
    CBatchStop::EndBySignal();
    return nStatus;
} catch (CClosedPipe const&) {
    CBatchStop::EndByClosedPipe();
    return EXIT_SYSTEM;
}

void AddBatch(CLI::App& app, CBatchOptions& options, EExit& nStatus) {
    static CWords<EBatchForm> const FORMS = {
        {"tsv", EBatchForm::Tsv}, {"csv", EBatchForm::Csv}, {"jsonl", EBatchForm::Jsonl}};
    static CWords<EBatchOp> const OPS = {
        {"zip", EBatchOp::Zip}, {"addr", EBatchOp::Addr}, {"latest", EBatchOp::Latest}};
    CLI::App* const pBatch = app.add_subcommand("batch", "results beside each line of a table");
    pBatch->add_option("FILE", options.strFile, "the table (none, or -: standard input)");
    pBatch->add_option("--from", options.nForm, "form of the input and of the output")
        ->transform(OneOf(FORMS))
        ->type_name("tsv|csv|jsonl")
        ->required();
    pBatch->add_option("--column", options.strColumn, "what to look up: number from 1, name below a header, JSON key")
        ->type_name("N")
        ->required();
    pBatch->add_option("--op", options.question.nOp, "look up postal codes, addresses, or latest forms")
        ->transform(OneOf(OPS))
        ->type_name("zip|addr|latest")
        ->required();
    auto* const pExact = pBatch->add_flag("--exact", options.question.bExact,
                                          "addresses as the dictionary spells them, as `qeadrs addr --exact`");
    pBatch->add_flag("--reading", options.question.bReading, "one result more: all that `qeadrs addr --json` tells")
        ->excludes(pExact);
    pBatch->add_flag("--header", options.bHeader, "the first line has names; the results' are added");
    pBatch->add_option("--prefix", options.strPrefix, "put in front of the results' names")->type_name("TEXT");
    pBatch->add_option("--jobs", options.nJobs, "threads (default: one for each processor)")
        ->check(CLI::Range(1, 256))
        ->type_name("N");
    pBatch->add_option("--rejects", options.strRejects, "where malformed lines go, as they are")->type_name("FILE");
    pBatch->add_flag("--progress,!--no-progress", options.bProgress, "show progress (default: on a terminal)");
    pBatch
        ->add_option("-d,--dic", options.strDic, "dictionary, or the folder of a qeadrs.dic (default: the profile's)")
        ->type_name("FILE");
    pBatch->add_flag("-q,--quiet", options.bQuiet, "no remarks, errors only");
    pBatch->footer(BATCH_HELP);
    pBatch->callback([&options, &nStatus] { nStatus = RunBatch(options); });
}

} // namespace qe
