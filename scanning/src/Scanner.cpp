#include <opc/scanning/Scanner.hpp>

#include <opc/physical/ReadingMemory.hpp>
#include <opc/scanning/OrderedWindow.hpp>

#include <algorithm>
#include <deque>
#include <exception>
#include <thread>
#include <utility>

namespace opc::scanning {

namespace {

/// What is read and waits for its turn. It is moved often; a result itself would be copied, as its move may throw.
struct Job {
    explicit Job(Source source) : source(std::move(source)) {}

    Source source;
    std::unique_ptr<Result> result = std::make_unique<Result>();
};

/// How many results are taken at a time.
constexpr std::size_t MANY = 32;

/// How much of a result may wait with many others, in bytes.
constexpr std::size_t LITTLE = std::size_t{256} * 1024;

constexpr std::size_t ROW = 80; ///< what a row takes beside its texts, about

template <typename... Texts>
std::size_t weighRow(const Texts&... texts) {
    return (ROW + ... + texts.size());
}

std::size_t weigh(const ScannedSignatures& signatures) {
    std::size_t weight = 0;
    for (const auto& signature : signatures.standard.signatures) {
        for (const auto& reference : signature.cryptography.references)
            weight += weighRow(reference.uri);
        for (const auto* const list : {&signature.coverage.gaps, &signature.coverage.byCustom})
            for (const auto& gap : *list)
                weight += weighRow(gap.place, gap.id, gap.type, gap.text);
    }
    return weight;
}

/// About how many bytes a result has where a package can make it large.
std::size_t weigh(const Result& result) {
    std::size_t weight = 0;
    for (const interfaces::Oddity& oddity : result.hidden)
        weight += weighRow(oddity.place, oddity.what, oddity.done);
    if (result.parts)
        for (const ScannedPart& part : *result.parts)
            weight += weighRow(part.name, part.contentType);
    if (result.relationships)
        for (const ScannedRelationship& one : *result.relationships)
            weight += weighRow(one.id, one.type, one.target);
    if (result.externals)
        for (const inspection::External& one : result.externals->found)
            weight += weighRow(one.source, one.id, one.type, one.target);
    if (result.findings)
        for (const inspection::Finding& finding : result.findings->findings)
            weight += weighRow(finding.place.part, finding.place.target, finding.message);
    return result.signatures ? weight + weigh(*result.signatures) : weight;
}

} // namespace

class Scanner::Impl {
public:
    Impl(Sources sources, ScanOptions options)
        : sources(std::move(sources)), options(std::move(options)),
          threadCount(this->options.jobs != 0 ? this->options.jobs
                                              : std::max(1U, std::thread::hardware_concurrency())),
          most(std::max<std::size_t>(this->options.window, 1)), window(most) {}
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    ~Impl() {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            hasStopped = true;
        }
        added.notify_all();
        while (window.size() != 0)
            window.take(MANY);
        for (std::thread& thread : threads)
            thread.join();
    }

    void stop() {
        std::unique_lock<std::mutex> lock(mutex);
        hasStopped = true;
        added.notify_all();
        rested.wait(lock, [this] { return readingCount == 0; });
    }

    bool isReady() const noexcept { return given < taken.size(); }

    std::optional<Result> next() {
        if (given == taken.size()) {
            takeSources();
            if (window.size() == 0) {
                if (failure)
                    std::rethrow_exception(std::exchange(failure, nullptr));
                return std::nullopt;
            }
            taken = window.take(MANY);
            given = 0;
        }
        return std::move(*taken[given++].result);
    }

private:
    /// Takes as many files as last time, and further ones while the next result isn't there: few from a slow list, and from
    /// a fast one as many as keep the threads busy.
    void takeSources() {
        while (!isAtEnd && window.size() < most && (window.size() < depth || !window.canTake())) {
            std::optional<Source> source;
            try {
                source = sources();
            } catch (...) {
                failure = std::current_exception();
            }
            isAtEnd = !source;
            if (source)
                add(window.begin(std::move(*source)));
            depth = std::max(depth, window.size());
        }
    }

    void add(Job& job) {
        if (threads.size() < threadCount)
            startThread();
        if (threads.empty()) {
            read(job, options);
            window.end(job);
            return;
        }
        {
            const std::lock_guard<std::mutex> lock(mutex);
            waiting.push_back(&job);
        }
        added.notify_one();
    }

    void startThread() {
        try {
            ScanOptions own = options;
            own.limits.memory = std::make_shared<physical::ReadingMemory>();
            threads.emplace_back([this, own = std::move(own)] { work(own); });
        } catch (const std::exception&) {
            // Those that there are do, or the thread of the caller.
        }
    }

    void work(const ScanOptions& own) {
        std::unique_lock<std::mutex> lock(mutex);
        for (;;) {
            added.wait(lock, [this] { return hasStopped || !waiting.empty(); });
            if (waiting.empty())
                return;
            Job& job = *waiting.front();
            waiting.pop_front();
            const bool isWanted = !hasStopped;
            if (isWanted)
                ++readingCount;
            lock.unlock();
            if (isWanted) {
                read(job, own);
                lock.lock();
                --readingCount;
                lock.unlock();
                rested.notify_all();
                if (weigh(*job.result) > LITTLE)
                    window.waitUntilFirst(job);
            }
            window.end(job);
            lock.lock();
        }
    }

    static void read(Job& job, const ScanOptions& with) {
        try {
            job.result.reset(new Result(readFile(job.source, with))); // which is made there
        } catch (const std::exception& e) {
            *job.result = Result();
            job.result->name = job.source.name;
            job.result->failure = describe(e, {});
        }
        job.source.bytes.reset();
    }

    const Sources sources;
    const ScanOptions options;
    const unsigned threadCount;
    const std::size_t most;
    std::size_t depth =
        2 * std::size_t{threadCount}; ///< how many files are outstanding when results are taken
    bool isAtEnd = false;
    std::exception_ptr failure; ///< of the sources
    OrderedWindow<Job> window;
    std::vector<Job> taken;
    std::size_t given = 0;            ///< of those
    std::vector<std::thread> threads; ///< that of the caller starts them, and no other looks at the list
    std::mutex mutex;                 ///< of what follows
    std::condition_variable added;
    std::condition_variable rested;
    std::deque<Job*> waiting;
    unsigned readingCount = 0; ///< how many threads read a file
    bool hasStopped = false;
};

Scanner::Scanner(Sources sources, ScanOptions options)
    : impl(std::make_unique<Impl>(std::move(sources), std::move(options))) {
}

Scanner::~Scanner() = default;

std::optional<Result> Scanner::next() {
    return impl->next();
}

bool Scanner::isReady() const noexcept {
    return impl->isReady();
}

void Scanner::stop() {
    impl->stop();
}

void scan(Scanner::Sources sources, ScanOptions options, const std::function<void(Result)>& sink) {
    Scanner scanner(std::move(sources), std::move(options));
    while (std::optional<Result> result = scanner.next())
        sink(std::move(*result));
}

void scan(const std::vector<std::filesystem::path>& files, ScanOptions options,
          const std::function<void(Result)>& sink) {
    auto file = files.begin();
    scan([&]() { return file == files.end() ? std::nullopt : std::optional(fileSource(*file++)); },
         std::move(options), sink);
}

} // namespace opc::scanning
