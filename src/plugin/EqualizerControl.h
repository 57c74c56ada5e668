#pragma once
// The equalizer's engine under the plug-in's control: the host rate and block size, the frame
// (N and partition) they and FAT/Resolution give, the convolution hop the latency padding
// allows, the band designs and kernel builds that follow, and how all of it reaches the audio
// thread.
//
// Threads and locks. The engine lock serializes reconfigurations (rate, block size, frame,
// suspend); each holds it only for short work. The design lock serializes band designs and
// kernel builds, the process lock is the kernel designer's own. The audio thread waits for none
// of them: engine settings are posted to it as atomics, kernels are published
// (KernelSetExchange), and parameter changes that need the design lock are posted
// (DesignHandover) and done by whoever holds that lock:
// - another thread posts and then takes the lock (a bounded wait, as for all its design work);
//   its DesignScope does everything pending before it lets the lock go;
// - the audio thread (the thread of the latest process call; hosts automate from it) posts to
//   its own queue and only tries the lock: if it is free it does its own changes there and then
//   (a single-threaded host therefore sees every change applied at once), otherwise the holder
//   does them. It never does work that another thread posted, and a holder looks at the audio
//   thread's queue again after letting the lock go, so nothing posted meanwhile is left behind.
// Lock order where they nest: design, process, engine.

#include <atomic>
#include <thread>

#include "dsp/AudioEngine.h"
#include "dsp/BandModel.h"
#include "dsp/KernelDesigner.h"
#include "platform/TimedLock.h"
#include "plugin/DesignHandover.h"
#include "plugin/EngineFrame.h"
#include "plugin/EngineKernelOps.h"
#include "plugin/RelaxedAtomic.h"

// What the control needs from the plug-in that owns it.
class EqualizerOwner {
public:
    // The quantized step of a switch parameter (FAT, Resolution, LinPhase, Solo).
    virtual int switchStep(int index) const = 0;
    virtual bool presetLoading() const = 0;
    // The latency compensation mode (latency::Mode).
    virtual int compensationMode() const = 0;
    // Stores a posted band parameter in the band model; false when nothing is to be redesigned.
    virtual bool storeBandParameter(int index, float value) = 0;
    // After band `band` (or every band, −1) was designed, under the design lock.
    virtual void bandsDesigned(int band) = 0;
    // Under the engine lock: the audio path was cleared; the host rate was set; the block size
    // was set (the reported delay and the analyzer follow).
    virtual void engineCleared() = 0;
    virtual void hostRateSet(float hostRate) = 0;
    virtual void blockSizeSet() = 0;

protected:
    ~EqualizerOwner() = default;
};

class EqualizerControl {
public:
    static constexpr int kMinFrameSize = 4096;

    EqualizerControl(EqualizerOwner& owner, dsp::BandModel& bands);
    EqualizerControl(const EqualizerControl&) = delete;
    EqualizerControl& operator=(const EqualizerControl&) = delete;

    // ---- Host boundary (any thread but the audio thread) --------------------------------------
    void suspend();
    // The pins as the host answered at resume, so that the audio thread never asks.
    void resume(bool secondInputConnected, bool secondOutputConnected);
    void setSampleRate(float hostRate);
    void setBlockSize(int size);
    // The owner's compensation mode changed: the padding the convolution may borrow from
    // changes with it.
    void compensationModeChanged();

    // ---- Parameter changes (any thread, the audio thread included; never waits) ---------------
    // A band parameter, FAT, Resolution, LinPhase or Solo changed to value.
    void post(int index, float value);

    // ---- Under the design lock ----------------------------------------------------------------
    // The design lock for a scope; letting it go also does what other threads posted meanwhile.
    class DesignScope {
    public:
        explicit DesignScope(EqualizerControl& c, int waitMs = platform::TimedLock::kDefaultWaitMs)
            : control_(c), owns_(c.designLock.lock(waitMs)) {
            if (owns_) ++control_.designDepth;
        }
        ~DesignScope() {
            if (owns_) control_.leaveDesignScope();
        }
        DesignScope(const DesignScope&) = delete;
        DesignScope& operator=(const DesignScope&) = delete;
        explicit operator bool() const { return owns_; }

    private:
        EqualizerControl& control_;
        bool owns_;
    };
    void updateBand(int b);
    void redesignAllBands();
    // Band curves, kernels and total curves from the current sections. Caller holds the lock.
    void refreshCurves();
    // Repeats a kernel build whose lock wait ran out (not on the audio thread).
    void rebuildIfPending();

    // ---- Audio thread ---------------------------------------------------------------------------
    template <typename Sample, class Reader, class Feed>
    void process(Sample** inputs, Sample** outputs, int frames, const dsp::AudioBlockSettings& s, Reader&& reader,
                 Feed&& feed) {
        audioThread.store(std::this_thread::get_id(), std::memory_order_relaxed);
        // Changes the audio thread posted while another thread held the design lock, and which
        // that thread left (it does a bounded amount of them), are done here if the lock is free.
        runAudioThreadWork();
        engine.process<Sample>(inputs, outputs, frames, secondInputConnected.load(std::memory_order_relaxed),
                               secondOutputConnected.load(std::memory_order_relaxed), s, reader, kernelOps, feed);
    }

    // ---- State, any thread ----------------------------------------------------------------------
    EngineFrame frame() const { return frame_.load(); }
    int integerRate() const { return intRate; }
    double designRate() const { return designRateHz; }
    dsp::AudioEngine& audioEngine() { return engine; }
    const dsp::AudioEngine& audioEngine() const { return engine; }
    const dsp::KernelDesigner& kernelDesigner() const { return kernels; }

private:
    bool onAudioThread() const {
        return std::this_thread::get_id() == audioThread.load(std::memory_order_relaxed);
    }
    void applyDesignParameter(int index, float value);
    // With the design lock held: the posted changes this thread may do.
    void drainPending();
    // Without it: the audio thread's changes, if the lock is free at once.
    void runAudioThreadWork();
    void leaveDesignScope();
    void reconfigureFrame();
    // Under the engine lock: publishes the frame to the engine and suspends; true when the
    // kernels must be cut anew for it.
    bool setFrame(EngineFrame f);
    // Under the engine lock: the current frame with the convolution hop the padding allows now
    // (set only where that hop changes); true when the kernels must be cut anew.
    bool followPadding();
    void applyFrameToEngine();
    // The frame with its convolution hop for these settings.
    EngineFrame frameFor(int frameSize, int partition) const;
    // The frame and convolution hop the engine convolves with, which the kernels are built for.
    dsp::KernelFrame kernelFrame() const;
    // Cuts the kernels anew for a new frame (not while a preset loads: the load ends with that).
    void recutKernels();
    int partitionForBlock(bool inclusiveThresholds, int frameSize) const;

    EqualizerOwner& owner;
    dsp::BandModel& bands;

    platform::TimedLock engineLock;
    platform::TimedLock designLock;
    platform::TimedLock processLock;
    DesignHandover controlWork;  // posted by other threads
    DesignHandover audioWork;    // posted by the audio thread
    // Nesting of the design lock's holder in DesignScopes (and the audio thread's own turn): only
    // the outermost level does posted work, so that work which itself opens a scope (a band
    // update) never starts more work inside it. Touched only by the lock's holder.
    int designDepth = 0;
    std::atomic<std::thread::id> audioThread{};

    dsp::KernelDesigner kernels;
    EngineKernelOps kernelOps{kernels};
    dsp::AudioEngine engine;

    PublishedEngineFrame frame_{{kMinFrameSize, 2 * kMinFrameSize, kMinFrameSize}};
    RelaxedAtomic<int> intRate = 44100;
    int hostBlock = 0;  // the last block size the host set
    double designRateHz = 44100.0;
    std::atomic<bool> secondInputConnected{true};
    std::atomic<bool> secondOutputConnected{true};
};
