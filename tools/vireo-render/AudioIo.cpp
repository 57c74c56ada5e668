#include "AudioIo.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "Errors.h"

namespace render {
namespace {

// Bits of an integer sample format, or 0 for float and compressed ones.
int integerBits(int format) {
    switch (format & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_PCM_S8: case SF_FORMAT_PCM_U8: return 8;
        case SF_FORMAT_PCM_16: return 16;
        case SF_FORMAT_PCM_24: return 24;
        case SF_FORMAT_PCM_32: return 32;
        default: return 0;
    }
}

std::optional<Container> containerOf(int format) {
    switch (format & SF_FORMAT_TYPEMASK) {
        case SF_FORMAT_WAV: case SF_FORMAT_WAVEX: case SF_FORMAT_RF64: return Container::Wav;
        case SF_FORMAT_AIFF: return Container::Aiff;
        case SF_FORMAT_FLAC: return Container::Flac;
        case SF_FORMAT_OGG: return Container::Ogg;
        default: return std::nullopt;
    }
}

int majorOf(Container c) {
    switch (c) {
        case Container::Wav: return SF_FORMAT_WAV;
        case Container::Aiff: return SF_FORMAT_AIFF;
        case Container::Flac: return SF_FORMAT_FLAC;
        case Container::Ogg: return SF_FORMAT_OGG;
    }
    return SF_FORMAT_WAV;
}

std::string lowerExtension(const std::string& path) {
    const size_t slash = path.rfind('/');
    const size_t dot = path.rfind('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return "";
    std::string ext = path.substr(dot + 1);
    for (char& ch : ext) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    return ext;
}

// libsndfile's own name of a major or sub format, for formats the summary has no word for.
std::string libraryFormatName(int format) {
    SF_FORMAT_INFO info{};
    info.format = format;
    if (sf_command(nullptr, SFC_GET_FORMAT_INFO, &info, sizeof info) != 0 || !info.name) return "unknown";
    return info.name;
}

void setNormalization(SNDFILE* file, int format) {
    // Integer samples are scaled by this tool (see AudioIo.h); the library's own scaling reads
    // by 1/32768 but writes by 32767, which would change a 16-bit file that passes through.
    if (integerBits(format) > 0) sf_command(file, SFC_SET_NORM_DOUBLE, nullptr, SF_FALSE);
}

std::string directoryOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string baseNameOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

std::string containerName(Container c) {
    switch (c) {
        case Container::Wav: return "WAV";
        case Container::Aiff: return "AIFF";
        case Container::Flac: return "FLAC";
        case Container::Ogg: return "Ogg";
    }
    return "?";
}

std::optional<Container> containerFromOption(const std::string& name) {
    std::string n;
    for (char ch : name) n += static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    if (n == "wav") return Container::Wav;
    if (n == "aiff" || n == "aif") return Container::Aiff;
    if (n == "flac") return Container::Flac;
    if (n == "ogg") return Container::Ogg;
    return std::nullopt;
}

std::optional<Container> containerFromExtension(const std::string& path) {
    const std::string ext = lowerExtension(path);
    if (ext == "wav" || ext == "wave") return Container::Wav;
    if (ext == "aif" || ext == "aiff" || ext == "aifc") return Container::Aiff;
    if (ext == "flac") return Container::Flac;
    if (ext == "ogg" || ext == "oga" || ext == "opus") return Container::Ogg;
    return std::nullopt;
}

std::string describeFormat(int format) {
    const auto container = containerOf(format);
    const std::string where = container ? containerName(*container) : libraryFormatName(format & SF_FORMAT_TYPEMASK);
    const int bits = integerBits(format);
    if (bits > 0) return std::to_string(bits) + "-bit " + where;
    switch (format & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_FLOAT: return "32-bit float " + where;
        case SF_FORMAT_DOUBLE: return "64-bit float " + where;
        case SF_FORMAT_VORBIS: return "Ogg Vorbis";
        case SF_FORMAT_OPUS: return "Ogg Opus";
        default: return where + " (" + libraryFormatName(format & SF_FORMAT_SUBMASK) + ")";
    }
}

// ---------------------------------------------------------------------------------------------

InputFile::InputFile(const std::string& path) : path_(path) {
    struct stat st{};
    if (stat(path.c_str(), &st) != 0) throw RunError("cannot open " + quoted(path) + ": " + std::strerror(errno));
    if (S_ISDIR(st.st_mode)) throw RunError("cannot read " + quoted(path) + ": it is a directory");
    if (FILE* probe = std::fopen(path.c_str(), "rb")) {
        std::fclose(probe);
    } else {
        throw RunError("cannot open " + quoted(path) + ": " + std::strerror(errno));
    }
    file_ = sf_open(path.c_str(), SFM_READ, &info_);
    if (!file_)
        throw RunError(quoted(path) + " is not an audio file this tool can read (" + sf_strerror(nullptr) + ")");
    const auto container = containerOf(info_.format);
    if (!container) {
        const std::string kind = libraryFormatName(info_.format & SF_FORMAT_TYPEMASK);
        sf_close(file_);
        file_ = nullptr;
        throw RunError(quoted(path) + " is in an unsupported format (" + kind +
                       "); vireo-render reads WAV, AIFF, FLAC and Ogg files");
    }
    container_ = *container;
    if (info_.channels < 1 || info_.channels > 2) {
        const int n = info_.channels;
        sf_close(file_);
        file_ = nullptr;
        throw RunError(quoted(path) + " has " + std::to_string(n) +
                       " channels; vireo-render processes mono and stereo files");
    }
    setNormalization(file_, info_.format);
    if (const int bits = integerBits(info_.format)) scale_ = std::ldexp(1.0, -(bits - 1));
}

InputFile::~InputFile() {
    if (file_) sf_close(file_);
}

size_t InputFile::read(double* interleaved, size_t frames) {
    const sf_count_t got = sf_readf_double(file_, interleaved, static_cast<sf_count_t>(frames));
    if (got < 0) throw RunError("cannot read " + quoted(path_) + ": " + sf_strerror(file_));
    const size_t n = static_cast<size_t>(got);
    if (scale_ != 1.0)
        for (size_t i = 0; i < n * static_cast<size_t>(info_.channels); ++i) interleaved[i] *= scale_;
    return n;
}

// ---------------------------------------------------------------------------------------------

int chooseOutputFormat(const InputFile* input, const std::string& formatOption, const std::string& bitsOption,
                       const std::string& outputPath, int channels, int sampleRate) {
    Container container = input ? input->container() : Container::Wav;
    int major = input ? (input->format() & SF_FORMAT_TYPEMASK) : SF_FORMAT_WAV;
    if (!formatOption.empty()) {
        const auto chosen = containerFromOption(formatOption);
        if (!chosen) throw UsageError("unknown --format " + quoted(formatOption) + "; use wav, aiff, flac or ogg");
        if (*chosen != container) {
            container = *chosen;
            major = majorOf(container);
        }
    }
    if (const auto named = containerFromExtension(outputPath); named && *named != container)
        throw UsageError("the output name " + quoted(outputPath) + " calls for " + containerName(*named) +
                         " but the file would be " + containerName(container) + "; add --format or rename it");

    int sub = 0;
    if (!bitsOption.empty()) {
        if (container == Container::Ogg) throw UsageError("Ogg files are compressed and have no --bits");
        if (bitsOption == "8") sub = container == Container::Wav ? SF_FORMAT_PCM_U8 : SF_FORMAT_PCM_S8;
        else if (bitsOption == "16") sub = SF_FORMAT_PCM_16;
        else if (bitsOption == "24") sub = SF_FORMAT_PCM_24;
        else if (bitsOption == "32") sub = SF_FORMAT_PCM_32;
        else if (bitsOption == "float") sub = SF_FORMAT_FLOAT;
        else if (bitsOption == "double") sub = SF_FORMAT_DOUBLE;
        else throw UsageError("unknown --bits " + quoted(bitsOption) + "; use 8, 16, 24, 32, float or double");
    } else if (!input) {
        sub = SF_FORMAT_FLOAT;
    } else {
        sub = input->format() & SF_FORMAT_SUBMASK;
        SF_INFO same{};
        same.format = major | sub;
        same.channels = channels;
        same.samplerate = sampleRate;
        if (!sf_format_check(&same)) {
            // The input's sample format does not fit the new container: take the nearest that does.
            const int bits = integerBits(input->format());
            if (container == Container::Ogg) sub = SF_FORMAT_VORBIS;
            else if (container == Container::Flac) sub = bits > 0 && bits <= 16 ? SF_FORMAT_PCM_16 : SF_FORMAT_PCM_24;
            else sub = bits > 0 ? SF_FORMAT_PCM_24 : SF_FORMAT_FLOAT;
        }
    }
    SF_INFO info{};
    info.format = major | sub;
    info.channels = channels;
    info.samplerate = sampleRate;
    if (!sf_format_check(&info))
        throw UsageError("a " + containerName(container) + " file cannot hold " + describeFormat(info.format) +
                         " samples at " + std::to_string(sampleRate) + " Hz");
    return info.format;
}

// ---------------------------------------------------------------------------------------------

OutputFile::OutputFile(const std::string& path, int format, int channels, int sampleRate)
    : path_(path), channels_(channels) {
    std::string pattern = directoryOf(path) + "/." + baseNameOf(path) + ".partial-XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    descriptor_ = mkstemp(name.data());
    if (descriptor_ < 0)
        throw RunError("cannot write in " + quoted(directoryOf(path)) + ": " + std::strerror(errno));
    temporary_ = name.data();
    // mkstemp makes the file private; the finished file gets the permissions of any new file.
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(descriptor_, 0666 & ~mask);

    SF_INFO info{};
    info.format = format;
    info.channels = channels;
    info.samplerate = sampleRate;
    file_ = sf_open_fd(descriptor_, SFM_WRITE, &info, SF_FALSE);
    if (!file_) {
        const std::string why = sf_strerror(nullptr);
        discard();
        throw RunError("cannot write " + quoted(path) + ": " + why);
    }
    setNormalization(file_, format);
    if (const int bits = integerBits(format)) scale_ = std::ldexp(1.0, bits - 1);
    else sf_command(file_, SFC_SET_CLIPPING, nullptr, SF_TRUE);  // compressed formats that store integers
}

OutputFile::~OutputFile() { discard(); }

void OutputFile::discard() {
    if (file_) sf_close(file_);
    file_ = nullptr;
    if (descriptor_ >= 0) close(descriptor_);
    descriptor_ = -1;
    if (!temporary_.empty()) unlink(temporary_.c_str());
    temporary_.clear();
}

void OutputFile::copyTextFrom(SNDFILE* input) {
    for (int field = SF_STR_FIRST; field <= SF_STR_LAST; ++field)
        if (const char* text = sf_get_string(input, field)) sf_set_string(file_, field, text);
}

void OutputFile::write(const double* interleaved, size_t frames) {
    const size_t count = frames * static_cast<size_t>(channels_);
    const double* data = interleaved;
    if (scale_ != 1.0) {
        // Round to the nearest step and hold to the format's range instead of wrapping around.
        scaled_.resize(count);
        for (size_t i = 0; i < count; ++i) {
            const double v = std::nearbyint(interleaved[i] * scale_);
            scaled_[i] = v < -scale_ ? -scale_ : v > scale_ - 1.0 ? scale_ - 1.0 : v;
        }
        data = scaled_.data();
    }
    if (sf_writef_double(file_, data, static_cast<sf_count_t>(frames)) != static_cast<sf_count_t>(frames))
        throw RunError("cannot write " + quoted(path_) + ": " + sf_strerror(file_));
}

void OutputFile::commit() {
    const int closed = sf_close(file_);
    file_ = nullptr;
    if (closed != 0) throw RunError("cannot finish " + quoted(path_) + ": " + sf_error_number(closed));
    if (fsync(descriptor_) != 0) throw RunError("cannot finish " + quoted(path_) + ": " + std::strerror(errno));
    close(descriptor_);
    descriptor_ = -1;
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0)
        throw RunError("cannot write " + quoted(path_) + ": " + std::strerror(errno));
    temporary_.clear();
}

}  // namespace render
