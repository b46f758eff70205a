// parallel_pipeline.h: stands in for oneTBB's header of this name under ThreadSanitizer, which cannot see how oneTBB
// itself, a library built without it, hands items from thread to thread. It knows as much as batches use: the items go
// through their stages in threads of the standard library, serial stages in the order of the first.
#pragma once

#include <oneapi/tbb/global_control.h>

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace tbb
{

enum class filter_mode { parallel, serial_in_order };

class flow_control
{
public:
    void stop()
    {
        isStopped = true;
    }

    bool isStopped = false;
};

// Lets the items in one by one, in their order.
class SerialStage
{
public:
    template <typename Body>
    void enter(std::size_t item, Body body)
    {
        std::unique_lock lock(mutex_);
        turns_.wait(lock, [&] { return next_ == item; });
        body();
        ++next_;
        turns_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable turns_;
    std::size_t next_ = 0;
};

template <typename In, typename Out, typename Body>
struct filter {
    filter_mode mode;
    Body body;
};

template <typename In, typename Out, typename Body>
filter<In, Out, Body> make_filter(filter_mode mode, Body body)
{
    return {mode, std::move(body)};
}

template <typename Source, typename Middle>
struct SourceAndMiddle {
    const Source &source;
    const Middle &middle;
};

template <typename Source, typename Middle, typename Sink>
struct Chain {
    const Source &source;
    const Middle &middle;
    const Sink &sink;
};

template <typename T, typename Source, typename Middle>
auto operator&(const filter<void, T, Source> &source, const filter<T, T, Middle> &middle)
{
    return SourceAndMiddle<filter<void, T, Source>, filter<T, T, Middle>>{source, middle};
}

template <typename Source, typename Middle, typename T, typename Sink>
auto operator&(const SourceAndMiddle<Source, Middle> &first, const filter<T, void, Sink> &sink)
{
    return Chain<Source, Middle, filter<T, void, Sink>>{first.source, first.middle, sink};
}

// A thread carries an item through all stages, so that as many items are under way as there are threads, whatever the
// caller allows.
template <typename Source, typename Middle, typename Sink>
void parallel_pipeline(std::size_t, const Chain<Source, Middle, Sink> &chain)
{
    std::mutex sourceMutex;
    flow_control flow;
    std::size_t items = 0;
    SerialStage sinkStage;
    const auto work = [&] {
        for (;;) {
            std::unique_lock lock(sourceMutex);
            if (flow.isStopped) {
                return;
            }
            auto item = chain.source.body(flow);
            if (flow.isStopped) { // the item is none
                return;
            }
            const std::size_t number = items++;
            lock.unlock();
            auto converted = chain.middle.body(std::move(item));
            sinkStage.enter(number, [&] { chain.sink.body(converted); });
        }
    };
    std::vector<std::jthread> threads(global_control::active_value(global_control::max_allowed_parallelism));
    for (std::jthread &thread : threads) {
        thread = std::jthread(work);
    }
}

} // namespace tbb
