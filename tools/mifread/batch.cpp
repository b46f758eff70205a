#include "batch.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/parallel_pipeline.h>
#include <oneapi/tbb/task_arena.h>

#include "claims.h"
#include "dry_run.h"
#include "inputs.h"
#include "interruption.h"
#include "mifhost/error.h"
#include "mifhost/plugin.h"
#include "mifhost/stream.h"
#include "output.h"
#include "paths.h"
#include "plan.h"
#include "progress.h"
#include "refusal.h"
#include "report.h"
#include "system.h"

namespace mifread
{

namespace
{

namespace fs = std::filesystem;

// What is written for a document, unless the user says otherwise: so much no honest document gives.
constexpr std::uint64_t outputRatio = 100;
constexpr std::uint64_t outputAlways = std::uint64_t{64} * 1024 * 1024;

// Likewise, the work of reading it.
constexpr std::uint64_t workRatio = 200;
constexpr std::uint64_t workAlways = std::uint64_t{256} * 1024 * 1024;

// Seconds of processor time for each of several documents: one alone has somebody who waits for it.
constexpr double batchTimeout = 300;

// Documents whose turn has not come yet wait converted. Their outcomes are small, their text need not be.
constexpr std::size_t waitingOutcomes = 64;
constexpr std::size_t waitingParts = 4;

// A file in the folder for results may be the first thing there.
void makeFolderOf(const std::string &file, const Options &options, Claims &claims)
{
    if (options.folder.empty() || file.empty() || file == "-") {
        return;
    }
    const fs::path results = claims.placeOf(pathOf(options.folder));
    const fs::path folder = claims.placeOf(pathOf(file)).parent_path();
    if (std::mismatch(results.begin(), results.end(), folder.begin(), folder.end()).first == results.end()) {
        makeFolder(pathOf(file).parent_path());
    }
}

// Throws when a document has to end: asked for again and again, on the thread that converts it.
class Deadline
{
public:
    // stream   the document, which must live as long as this
    // seconds  of processor time; 0 for no limit
    Deadline(const mifhost::Stream &stream, double seconds) : stream_(stream), seconds_(seconds) {}

    void operator()() const
    {
        throwIfInterrupted();
        if (seconds_ > 0 && system::processorSeconds() - start_ > seconds_) {
            throw mifhost::LimitReached(stream_.name(), stream_.position(),
                                        fmt::format("the limit of {} s of processor time is reached", seconds_));
        }
    }

private:
    const mifhost::Stream &stream_;
    double seconds_;
    double start_ = system::processorSeconds();
};

// A document on its way through the pipeline.
struct Job {
    const Input *input = nullptr;
    std::unique_ptr<OutputPart> part; // of the joined output; null when the document is written elsewhere
    Outcome outcome;
    bool wasInterrupted = false;
};
using JobPointer = std::shared_ptr<Job>;

// A document's share of the progress.
class DocumentProgress
{
public:
    DocumentProgress(Progress &progress, std::uint64_t size) : progress_(progress), size_(size) {}
    DocumentProgress(const DocumentProgress &) = delete;
    DocumentProgress &operator=(const DocumentProgress &) = delete;
    ~DocumentProgress()
    {
        reach(100); // a document that failed is done, too
    }

    void reach(int percent) noexcept
    {
        const std::uint64_t done = size_ * static_cast<std::uint64_t>(percent) / 100;
        progress_.addBytes(done - done_);
        done_ = done;
    }

private:
    Progress &progress_;
    std::uint64_t size_;
    std::uint64_t done_ = 0;
};

// Throws the refusal again, with what the file is.
[[noreturn]] void throwExplained(const mifhost::NotMif &refusal, mifhost::Stream &stream)
{
    std::array<std::uint8_t, 4096> beginning{};
    stream.seek(0);
    const std::string explanation = explainRefusal(std::span(beginning).first(stream.read(beginning)));
    if (explanation.empty()) {
        throw refusal;
    }
    throw mifhost::NotMif("", refusal.position(), refusal.what() + (": " + explanation));
}

// Tells how a document failed, from the exception being handled. An output that several documents share fails them all
// and goes on.
void noteFailure(Outcome &outcome, bool sharesOutput)
{
    const auto note = [&outcome](ExitCode code, const mifhost::Error &error) {
        const std::string message = error.what();
        outcome.code = code;
        // That of a result names the result alone.
        const bool isNamed = outcome.input == "-" || message.starts_with(outcome.input);
        outcome.messages.push_back(isNamed ? message : outcome.input + ": " + message);
        outcome.position = error.position();
    };
    try {
        throw;
    } catch (const mifhost::NotMif &error) {
        note(ExitCode::NotMif, error);
    } catch (const mifhost::LimitReached &error) {
        note(ExitCode::Limit, error);
    } catch (const OutputError &error) {
        if (sharesOutput) {
            throw;
        }
        note(ExitCode::Io, error);
    } catch (const mifhost::Error &error) {
        note(ExitCode::Io, error);
    } catch (const std::bad_alloc &) {
        outcome.code = ExitCode::Limit;
        outcome.messages.push_back(outcome.input + ": memory is exhausted");
    }
}

class Batch
{
public:
    Batch(const Options &options, const Command &command, const std::vector<Input> &inputs, Claims &claims);

    ExitCode run();

private:
    bool hasOwnFiles() const noexcept
    {
        return output_ == nullptr;
    }
    bool writeResults();
    void runPipeline();
    template <typename Step>
    void attempt(Step step);
    JobPointer nextJob(oneapi::tbb::flow_control &flow);
    void convert(Job &job);
    void convertToFile(Job &job);
    void convertTo(Job &job, Output &output);
    void finishJob(Job &job);
    void join(Job &job);

    const Options &options_;
    const Command &command_;
    const std::vector<Input> &inputs_;
    Claims &claims_;
    const unsigned jobs_;
    const mifhost::Plugin plugin_;
    std::unique_ptr<OutputFile> output_; // the joined one; null when each document has a file of its own
    bool isDirect_ = false;              // documents go straight to the joined output, as only one is at work
    std::size_t nextInput_ = 0;
    std::atomic<bool> stop_ = false;
    std::atomic<bool> hasFailed_ = false; // as a whole
    std::exception_ptr failure_;
    Report report_;
    Progress progress_;
};

// More threads than this for each processor only cost memory.
constexpr unsigned mostJobsPerProcessor = 4;

unsigned countJobs(const Options &options, std::size_t documents)
{
    const unsigned processors = std::max(std::thread::hardware_concurrency(), 1U);
    const unsigned wanted = options.jobs > 0 ? std::min(options.jobs, mostJobsPerProcessor * processors) : processors;
    return static_cast<unsigned>(std::clamp<std::size_t>(documents, 1, wanted));
}

std::uint64_t sumSizes(const std::vector<Input> &inputs)
{
    std::uint64_t sum = 0;
    for (const Input &input : inputs) {
        sum += input.size;
    }
    return sum;
}

Batch::Batch(const Options &options, const Command &command, const std::vector<Input> &inputs, Claims &claims)
    : options_(options), command_(command), inputs_(inputs), claims_(claims), jobs_(countJobs(options, inputs_.size())),
      plugin_(options.plugin.empty() ? mifhost::Plugin::linked() : mifhost::Plugin::load(options.plugin)),
      report_(options.report),
      progress_(!options.quiet && canShowProgress(options.folder.empty() ? options.output : options.folder),
                sumSizes(inputs_), inputs_.size())
{
    if (options.folder.empty() || command.results == Results::Files) {
        output_ = std::make_unique<OutputFile>(options.output);
        isDirect_ = jobs_ == 1 && command.results != Results::Files;
    }
}

ExitCode Batch::run()
{
    const bool isWritten = writeResults();
    report_.setNotBegun(inputs_.size() - nextInput_);
    const int signal = caughtSignal();
    const ExitCode code = isWritten ? report_.exitCode() : ExitCode::Io;
    // The way in which shells tell that a signal ended a program.
    report_.finish(signal != 0 ? 128 + signal : static_cast<int>(code), signal);
    if (signal != 0 && signal != system::brokenPipeSignal()) {
        progress_.complain("interrupted");
    } else if (signal == 0 && !options_.quiet) {
        report_.summarize(progress_);
    }
    return code;
}

// Returns whether the joined output could be written.
bool Batch::writeResults()
{
    try {
        runPipeline();
        if (output_ != nullptr && report_.anyConverted() && caughtSignal() == 0) {
            output_->commit();
        }
        return true;
    } catch (const Interrupted &) { // while it waited for somebody who reads
        return true;
    } catch (const OutputError &error) {
        progress_.complain(error.what());
        return false;
    }
}

void Batch::runPipeline()
{
    namespace tbb = oneapi::tbb;
    const tbb::global_control threads(tbb::global_control::max_allowed_parallelism, jobs_);
    const std::size_t waiting = jobs_ == 1 ? 1 : jobs_ * (hasOwnFiles() ? waitingOutcomes : waitingParts);
    const auto source = tbb::make_filter<void, JobPointer>(tbb::filter_mode::serial_in_order,
                                                           [this](tbb::flow_control &flow) { return nextJob(flow); });
    const auto conversion =
        tbb::make_filter<JobPointer, JobPointer>(tbb::filter_mode::parallel, [this](JobPointer job) {
            attempt([&] { convert(*job); });
            return job;
        });
    const auto sink = tbb::make_filter<JobPointer, void>(
        tbb::filter_mode::serial_in_order, [this](const JobPointer &job) { attempt([&] { finishJob(*job); }); });
    tbb::task_arena arena(static_cast<int>(jobs_));
    arena.execute([&] { tbb::parallel_pipeline(waiting, source & conversion & sink); });
    if (failure_ != nullptr) {
        std::rethrow_exception(failure_);
    }
}

// Carries out a step of the pipeline, which would lose the documents in it if an exception went through. The first
// exception ends the run.
template <typename Step>
void Batch::attempt(Step step)
{
    if (hasFailed_) {
        return;
    }
    try {
        step();
    } catch (...) {
        stop_ = true;
        if (!hasFailed_.exchange(true)) {
            failure_ = std::current_exception();
        }
    }
}

JobPointer Batch::nextJob(oneapi::tbb::flow_control &flow)
{
    if (stop_ || caughtSignal() != 0 || nextInput_ == inputs_.size()) {
        flow.stop();
        return nullptr;
    }
    auto job = std::make_shared<Job>();
    job->input = &inputs_[nextInput_++];
    return job;
}

void Batch::convert(Job &job)
{
    Outcome &outcome = job.outcome;
    outcome.input = job.input->path;
    outcome.size = job.input->size;
    if (!job.input->failure.empty()) {
        outcome.code = ExitCode::Io;
        outcome.messages.push_back(fmt::format("{}: {}", job.input->path, job.input->failure));
        return;
    }
    if (options_.update && isUpToDate(*job.input)) {
        outcome.isLeftAlone = true;
        outcome.result = textOf(job.input->result);
        progress_.addBytes(outcome.size);
        return;
    }
    const auto start = std::chrono::steady_clock::now();
    try {
        if (hasOwnFiles()) {
            convertToFile(job);
        } else if (isDirect_) {
            convertTo(job, *output_);
        } else {
            job.part = std::make_unique<OutputPart>();
            convertTo(job, *job.part);
        }
    } catch (const Interrupted &) {
        job.wasInterrupted = true;
    } catch (...) {
        noteFailure(outcome, !hasOwnFiles());
    }
    stop_ = stop_ || (options_.failFast && outcome.hasFailed());
    outcome.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void Batch::convertToFile(Job &job)
{
    makeFolder(job.input->result.parent_path());
    OutputFile file(textOf(job.input->result));
    convertTo(job, file);
    file.commit();
    job.outcome.result = file.name();
}

void Batch::convertTo(Job &job, Output &output)
{
    const std::uint64_t sizeLimit = std::min(options_.maxInput, mifhost::Stream::largestDocument);
    mifhost::FileStream stream(job.input->path, {sizeLimit, waitForInput});
    Outcome &outcome = job.outcome;
    outcome.size = stream.size();
    const std::uint64_t workLimit =
        options_.maxWork > 0 ? options_.maxWork : std::max(workAlways, workRatio * stream.size());
    const Deadline deadline(stream, options_.timeout.value_or(inputs_.size() > 1 ? batchTimeout : 0));
    mifhost::Document document(plugin_, stream,
                               {.bufferSize = options_.bufferSize,
                                .memoryLimit = options_.maxMemory,
                                .workLimit = workLimit,
                                .form = options_.form,
                                .encoding = options_.encoding,
                                .proceed = deadline});

    const std::uint64_t outputLimit =
        options_.maxOutput > 0 ? options_.maxOutput : std::max(outputAlways, outputRatio * stream.size());
    DocumentProgress progress(progress_, stream.size());
    Conversion conversion(document, output, job.input->result, claims_, outputLimit,
                          [&progress](int percent) { progress.reach(percent); });
    try {
        command_.convert(conversion);
    } catch (const mifhost::NotMif &error) {
        throwExplained(error, stream);
    }
    outcome.messages = conversion.losses();
    if (!outcome.messages.empty()) {
        outcome.code = ExitCode::Losses;
    }
}

void Batch::finishJob(Job &job)
{
    progress_.addDocument();
    if (!hasOwnFiles()) {
        join(job);
    }
    if (job.wasInterrupted) {
        return;
    }
    for (const std::string &message : job.outcome.messages) {
        progress_.complain(message);
    }
    report_.add(job.outcome);
}

// Puts what a document gave into the joined output, or takes it back when the document failed.
void Batch::join(Job &job)
{
    const bool hasFailed = job.wasInterrupted || job.outcome.hasFailed();
    if (job.part != nullptr && job.part->size() > 0) {
        if (output_->size() == 0) {
            output_->text() += command_.heading;
        }
        job.part->moveTo(*output_);
    }
    if (hasFailed) {
        output_->dropPart();
    } else {
        output_->keepPart();
    }
}

} // namespace

ExitCode convertDocuments(const Options &options, const Command &command)
{
    Progress messages(false, 0, 0);
    try {
        Inputs inputs = findInputs(options);
        if (command.results == Results::Single && options.folder.empty() && inputs.documents.size() > 1) {
            messages.complain("several documents need a folder for their results: give -d DIR");
            return ExitCode::Usage;
        }
        Claims claims;
        const std::string clash = planResults(inputs.documents, options, command, claims);
        if (!clash.empty()) {
            messages.complain(clash);
            return ExitCode::Usage;
        }
        if (!options.quiet) {
            for (const std::string &note : inputs.notes) {
                messages.complain(note);
            }
        }
        if (options.dryRun) {
            return showPlan(inputs.documents, options, command, messages);
        }
        makeFolderOf(options.report, options, claims);
        makeFolderOf(options.output, options, claims);
        return Batch(options, command, inputs.documents, claims).run();
    } catch (const mifhost::Error &error) { // the plug-in or the output
        messages.complain(error.what());
        return ExitCode::Io;
    }
}

} // namespace mifread
