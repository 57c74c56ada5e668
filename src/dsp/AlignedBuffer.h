#pragma once
// A zero-filled array of doubles on a 64-byte boundary (a cache line, and more than the 16
// bytes that SSE2 loads need). Allocated once; the size never changes.

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

namespace dsp {

class AlignedBuffer {
public:
    static constexpr std::size_t kAlignment = 64;

    AlignedBuffer() = default;
    explicit AlignedBuffer(std::size_t count) : size_(count) {
        const std::size_t bytes = (count * sizeof(double) + kAlignment - 1) / kAlignment * kAlignment;
        data_.reset(static_cast<double*>(std::aligned_alloc(kAlignment, bytes > 0 ? bytes : kAlignment)));
        if (!data_) throw std::bad_alloc();
        clear();
    }

    double* data() { return data_.get(); }
    const double* data() const { return data_.get(); }
    std::size_t size() const { return size_; }
    double& operator[](std::size_t i) { return data_[i]; }
    const double& operator[](std::size_t i) const { return data_[i]; }

    void clear() { clear(size_); }
    void clear(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) data_[i] = 0.0;
    }

private:
    struct Free {
        void operator()(double* p) const { std::free(p); }
    };
    std::unique_ptr<double[], Free> data_;
    std::size_t size_ = 0;
};

}  // namespace dsp
