// The rule by which design changes reach the design lock: the audio thread never waits for it
// and never does another thread's work; what it posts while another thread holds the lock is
// done by that thread when it lets the lock go; with the lock free it is done at once.

#include <gtest/gtest.h>

#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include "plugin/EqualizerControl.h"
#include "plugin/ParameterTable.h"

namespace {

struct Applied {
    int index;
    float value;
    std::thread::id thread;
};

class RecordingOwner final : public EqualizerOwner {
public:
    int switchStep(int) const override { return 0; }
    bool presetLoading() const override { return false; }
    int compensationMode() const override { return 0; }
    bool storeBandParameter(int index, float value) override {
        std::lock_guard<std::mutex> lock(mutex);
        applied.push_back({index, value, std::this_thread::get_id()});
        return false;  // nothing to redesign: only where and when it ran matters here
    }
    void bandsDesigned(int) override {}
    void engineCleared() override {}
    void hostRateSet(float) override {}
    void blockSizeSet() override {}

    std::vector<Applied> snapshot() {
        std::lock_guard<std::mutex> lock(mutex);
        return applied;
    }

private:
    std::mutex mutex;
    std::vector<Applied> applied;
};

class DesignChanges : public ::testing::Test {
protected:
    // Makes the calling thread the audio thread, as a process call does.
    void becomeAudioThread() {
        float* none[2] = {nullptr, nullptr};
        control.process<float>(none, none, 0, dsp::AudioBlockSettings{}, [](int) { return dsp::BiquadCoefficients{}; },
                               [](float) {});
    }
    RecordingOwner owner;
    dsp::BandModel bands;
    EqualizerControl control{owner, bands};
    const int gain = params::bandIndex(3, 0, 2);
};

TEST_F(DesignChanges, WithTheLockFreeEachThreadAppliesItsOwnChangeAtOnce) {
    becomeAudioThread();
    control.post(gain, 0.25f);
    std::thread::id otherThread;
    std::thread other([&] {
        otherThread = std::this_thread::get_id();
        control.post(gain, 0.125f);
    });
    other.join();
    const auto applied = owner.snapshot();
    ASSERT_EQ(applied.size(), 2u);
    EXPECT_EQ(applied[0].value, 0.25f);
    EXPECT_EQ(applied[0].thread, std::this_thread::get_id());
    EXPECT_EQ(applied[1].value, 0.125f);
    EXPECT_EQ(applied[1].thread, otherThread);
}

TEST_F(DesignChanges, WhileAnotherThreadHoldsTheLockTheHolderAppliesIt) {
    becomeAudioThread();
    std::promise<void> held, release;
    std::thread holder([&] {
        EqualizerControl::DesignScope scope(control);
        held.set_value();
        release.get_future().wait();
    });
    held.get_future().wait();
    control.post(gain, 0.5f);  // must return although the lock is held
    control.post(gain, 0.75f);
    EXPECT_TRUE(owner.snapshot().empty()) << "applied on the audio thread under another thread's lock";
    const std::thread::id holderId = holder.get_id();
    release.set_value();
    holder.join();

    const auto applied = owner.snapshot();
    ASSERT_EQ(applied.size(), 1u) << "the newest value once";
    EXPECT_EQ(applied[0].value, 0.75f);
    EXPECT_EQ(applied[0].thread, holderId);
}

}  // namespace
