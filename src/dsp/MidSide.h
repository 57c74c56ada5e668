#pragma once
// The two processing sides and how they come from and go back to the host's channels:
// left/right as they are, or mid/side when the switch asks for it and the host really gave two
// separate channels each way. Also the listen function, which mutes one side on output.

#include "dsp/SidePair.h"

namespace dsp {

// The host's channel buffers as the path uses them: a second buffer that is not connected is
// replaced by the first (so input 0 feeds both sides, and both sides' results go to output 0,
// the second write winning), and mid/side is allowed only when both second buffers exist and
// are distinct from the first.
template <typename Sample>
struct ChannelBuffers {
    const Sample* in[2];
    Sample* out[2];
    bool stereo;  // both second buffers connected and distinct from the first

    static ChannelBuffers resolve(Sample* const* inputs, Sample* const* outputs, bool secondInputConnected,
                                  bool secondOutputConnected) {
        ChannelBuffers c;
        c.in[0] = inputs[0];
        c.in[1] = secondInputConnected && inputs[1] ? inputs[1] : inputs[0];
        c.out[0] = outputs[0];
        c.out[1] = secondOutputConnected && outputs[1] ? outputs[1] : outputs[0];
        c.stereo = c.in[1] != c.in[0] && c.out[1] != c.out[0];
        return c;
    }
};

// Encode A = L + m·R, B = R − m·L; decode L = A − m·B, R = B + m·A. With m = 1 the round trip
// scales by 2, which the output stage takes back with the factor h = 0.5 applied to each side
// before decoding; with m = 0 both are identities (h = 1).
struct MidSide {
    double m = 0.0;
    double h = 1.0;

    // The mono-safe rule: mid/side only when switched on and the buffers are truly stereo.
    static MidSide choose(bool midSideOn, bool stereoBuffers) {
        return (midSideOn && stereoBuffers) ? MidSide{1.0, 0.5} : MidSide{0.0, 1.0};
    }

    void encode(double left, double right, double& a, double& b) const {
        a = left + m * right;
        b = right - m * left;
    }
    void decode(double a, double b, double& left, double& right) const {
        left = a - m * b;
        right = b + m * a;
    }

    // The same on a pair: (L, R) + m·(R, −L) and (A, B) + m·(−B, A). Adding m·(−y) rounds
    // exactly as subtracting m·y, so these equal the forms above bit for bit.
    template <class P>
    P encode(double left, double right) const {
        return encode(P::make(left, right));
    }
    template <class P>
    P encode(P x) const {
        return x + P::splat(m) * x.crossedBack();
    }
    template <class P>
    P decode(P x) const {
        return x + P::splat(m) * x.crossed();
    }
};

// Listen: 0 plays both sides, 1 mutes side B (only A is heard), 2 mutes side A.
struct ListenFactors {
    double a = 1.0;
    double b = 1.0;

    static ListenFactors forListen(int listen) {
        if (listen == 1) return {1.0, 0.0};
        if (listen == 2) return {0.0, 1.0};
        return {1.0, 1.0};
    }
};

}  // namespace dsp
