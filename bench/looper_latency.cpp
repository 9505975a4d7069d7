// Post -> MessageReceived latency between two loopers, measured as a ping-pong, beside
// the same ping-pong between two bare threads on a mutex and condition variable: the
// floor that any message passing between two threads pays. Both report the time of
// one hop (one thread handing the turn to the other).
#include <Looper.h>
#include <Message.h>
#include <OS.h>

#include <benchmark/benchmark.h>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

const uint32 kBall = 'ball';
const int kRoundTrips = 1000;

// Signals the waiting benchmark thread once a batch is over.
struct Batch {
    std::mutex mutex;
    std::condition_variable over;
    bool done = false;

    void Finish() {
        {
            std::lock_guard<std::mutex> locker(mutex);
            done = true;
        }
        over.notify_all();
    }

    void Wait() {
        std::unique_lock<std::mutex> locker(mutex);
        over.wait(locker, [&] { return done; });
        done = false;
    }
};

class Player : public BLooper {
public:
    Player(const char* name, Batch* batch) : BLooper(name), fBatch(batch) {}

    void SetPeer(BLooper* peer) { fPeer = peer; }
    void SetRemaining(int remaining) { fRemaining = remaining; }

    void MessageReceived(BMessage* message) override {
        if (message->what != kBall) {
            BLooper::MessageReceived(message);
            return;
        }
        // Only the serving player counts the round trips.
        if (fRemaining > 0 && --fRemaining == 0) {
            fBatch->Finish();
            return;
        }
        fPeer->PostMessage(kBall);
    }

private:
    Batch* fBatch;
    BLooper* fPeer = NULL;
    int fRemaining = 0;
};

void BM_LooperPingPong(benchmark::State& state) {
    Batch batch;
    Player* server = new Player("server", &batch);
    Player* receiver = new Player("receiver", &batch);
    server->SetPeer(receiver);
    receiver->SetPeer(server);
    server->Run();
    receiver->Run();

    for (auto _ : state) {
        server->Lock();
        server->SetRemaining(kRoundTrips + 1);
        server->Unlock();
        server->PostMessage(kBall);
        batch.Wait();
    }
    state.counters["hop"] =
        benchmark::Counter((double)state.iterations() * kRoundTrips * 2,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);

    server->Lock();
    server->Quit();
    receiver->Lock();
    receiver->Quit();
}

void BM_ConditionVariablePingPong(benchmark::State& state) {
    std::mutex mutex;
    std::condition_variable changed;
    int turn = 0;
    int remaining = 0;
    bool stop = false;
    Batch batch;

    // Player `side` waits for its turn, then hands it to the other side.
    auto play = [&](int side) {
        std::unique_lock<std::mutex> locker(mutex);
        for (;;) {
            changed.wait(locker, [&] { return stop || turn == side; });
            if (stop)
                return;
            if (side == 0 && remaining > 0 && --remaining == 0) {
                turn = -1;
                batch.Finish();
                continue;
            }
            turn = 1 - side;
            locker.unlock();
            changed.notify_all();
            locker.lock();
        }
    };
    std::thread server(play, 0);
    std::thread receiver(play, 1);

    for (auto _ : state) {
        {
            std::lock_guard<std::mutex> locker(mutex);
            remaining = kRoundTrips + 1;
            turn = 0;
        }
        changed.notify_all();
        batch.Wait();
    }
    state.counters["hop"] =
        benchmark::Counter((double)state.iterations() * kRoundTrips * 2,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);

    {
        std::lock_guard<std::mutex> locker(mutex);
        stop = true;
    }
    changed.notify_all();
    server.join();
    receiver.join();
}

} // namespace

BENCHMARK(BM_ConditionVariablePingPong)
    ->UseRealTime()
    ->MinTime(1.0)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_LooperPingPong)
    ->UseRealTime()
    ->MinTime(1.0)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

BENCHMARK_MAIN();
