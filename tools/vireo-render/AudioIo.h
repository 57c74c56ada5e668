#pragma once
// Audio files through libsndfile, and the two ends the renderer works between: a source of
// interleaved samples (a file or the built-in test signal) and a sink (the output file).
//
// Samples travel as doubles in -1..1. Integer files are scaled here by a power of two each way
// (a 16-bit sample k is k/32768 both when read and when written), so that a signal that comes
// back unchanged is written back bit for bit.

#include <sndfile.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace render {

class SampleSource {
public:
    virtual ~SampleSource() = default;
    virtual int channels() const = 0;
    virtual int sampleRate() const = 0;
    virtual int64_t frames() const = 0;  // -1 when not known ahead
    // Reads up to `frames` interleaved frames; fewer only at the end.
    virtual size_t read(double* interleaved, size_t frames) = 0;
};

class SampleSink {
public:
    virtual ~SampleSink() = default;
    virtual void write(const double* interleaved, size_t frames) = 0;
};

enum class Container { Wav, Aiff, Flac, Ogg };

std::string containerName(Container c);
std::optional<Container> containerFromOption(const std::string& name);  // "wav", "aiff", "flac", "ogg"
std::optional<Container> containerFromExtension(const std::string& path);
// What the summary says of a format, e.g. "16-bit WAV".
std::string describeFormat(int format);

class InputFile : public SampleSource {
public:
    // Throws RunError when the file is missing, unreadable, not audio, of a container other than
    // WAV, AIFF, FLAC or Ogg, or has more than two channels.
    explicit InputFile(const std::string& path);
    ~InputFile() override;
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    int channels() const override { return info_.channels; }
    int sampleRate() const override { return info_.samplerate; }
    int64_t frames() const override { return info_.frames; }
    size_t read(double* interleaved, size_t frames) override;

    int format() const { return info_.format; }
    Container container() const { return container_; }
    SNDFILE* handle() const { return file_; }

private:
    std::string path_;
    SNDFILE* file_ = nullptr;
    SF_INFO info_{};
    Container container_ = Container::Wav;
    double scale_ = 1.0;
};

// The format of the output: the input's container and sample format unless the options name
// others. `input` is null for the built-in signal (a 32-bit float WAV file by default).
// Throws UsageError for combinations a container cannot hold, or an OUTPUT name whose
// extension contradicts the container.
int chooseOutputFormat(const InputFile* input, const std::string& formatOption, const std::string& bitsOption,
                       const std::string& outputPath, int channels, int sampleRate);

// Writes to a temporary file beside `path` and renames it over `path` in commit(). Destroyed
// without commit(), it removes the temporary file: a failed run leaves nothing behind.
class OutputFile : public SampleSink {
public:
    OutputFile(const std::string& path, int format, int channels, int sampleRate);
    ~OutputFile() override;
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Carries title, artist and the other text fields over from the input, where the container has them.
    void copyTextFrom(SNDFILE* input);
    void write(const double* interleaved, size_t frames) override;
    void commit();

private:
    void discard();

    std::string path_;
    std::string temporary_;
    int descriptor_ = -1;
    SNDFILE* file_ = nullptr;
    int channels_ = 0;
    double scale_ = 1.0;  // integer formats: 2^(bits-1)
    std::vector<double> scaled_;
};

}  // namespace render
