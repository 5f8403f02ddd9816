// Chooses and runs conversions.
#include "route.hpp"

#include <algorithm>
#include <utility>

namespace velnls::tool {

namespace {

// No conversion writes more than four bytes for one byte of its source.
constexpr std::size_t kLargestExpansion = 4;
// The terminator that the library writes behind the text, and slack for room rules that keep bytes back.
constexpr std::size_t kSpare = 16;

// Tells conversions that the data file does not have from those that it has but that could not be made.
std::string whyNoRoute(const Library &library, const std::string &source, const std::string &target) {
    const std::vector<std::string> listed = library.list(NameList::Conversions);
    const std::pair<std::string, std::string> steps[] = {
        {source, target}, {source, "UTF-8"}, {"UTF-8", target}};
    const auto isListed = [&](const auto &step) {
        return std::find(listed.begin(), listed.end(), step.first + " -> " + step.second) != listed.end();
    };
    if (isListed(steps[0]) || (isListed(steps[1]) && isListed(steps[2]))) {
        return "the conversion from " + source + " to " + target + " in " + library.data().name() +
               " cannot be used: it needs ICU, or its table is broken";
    }
    return "no conversion from " + source + " to " + target + " in " + library.data().name() +
           ", neither directly nor through UTF-8";
}

} // namespace

Route::Route(Library &library, const Page &source, const Page &target) : source_(source), target_(target) {
    direct_ = library.conversion(source.locale, target.locale);
    nlsLocale *utf8 = library.utf8();
    toUtf8_ = library.conversion(source.locale, utf8);
    fromUtf8_ = library.conversion(utf8, target.locale);
    if (direct_ == nullptr && (toUtf8_ == nullptr || fromUtf8_ == nullptr)) {
        throw NoRoute(whyNoRoute(library, source.name, target.name));
    }
    const bool throughUtf8 = toUtf8_ != nullptr && fromUtf8_ != nullptr;
    const bool tells = source.isUnicode() || source.name == target.name ||
                       (target.isUnicode() && (direct_ == nullptr || !Library::isChain(direct_)));
    if (direct_ != nullptr && !tells && throughUtf8) {
        if (source.form == Form::SingleByte || source.hasPairs) {
            findSilentCodes();
        } else {
            direct_ = nullptr;
        }
    }
    ByteBuffer replacement;
    const unsigned char kReplacement[] = {0xEF, 0xBF, 0xBD, 0}; // the byte behind a source may be read
    if (fromUtf8_ != nullptr) {
        run(fromUtf8_, kReplacement, sizeof kReplacement - 1, replacement);
    }
    substitution_.assign(replacement.data(), replacement.size());
}

bool Route::convert(const unsigned char *text, std::size_t size, ByteBuffer &out) {
    if (direct_ != nullptr && !(hasSilentCodes_ && holdsSilentCode(text, size))) {
        return run(direct_, text, size, out);
    }
    return runThroughUtf8(text, size, out);
}

nlsStatus Route::attempt(nlsConversion *conversion, const unsigned char *text, std::size_t size,
                         ByteBuffer &out) {
    const std::size_t room = size * kLargestExpansion + kSpare;
    // The source is only read, but a counted string has no constant form.
    const nlsStr source = {const_cast<char *>(reinterpret_cast<const char *>(text)),
                           static_cast<std::uint32_t>(size), static_cast<std::uint32_t>(size)};
    chain_.resize(0);
    nlsStr intermediate = {chain_.room(room), static_cast<std::uint32_t>(room), 0};
    nlsStr destination = {out.room(room), static_cast<std::uint32_t>(room), 0};
    const nlsStatus status = nlsConvertNLS(conversion, &source, &intermediate, &destination);
    out.resize(out.size() + destination.length);
    return status;
}

// True when the library tells of a substitution.
bool Route::run(nlsConversion *conversion, const unsigned char *text, std::size_t size, ByteBuffer &out) {
    const nlsStatus status = attempt(conversion, text, size, out);
    if (status != NLS_OK && status != NLS_R_SUBSTITUTED) {
        throw StatusError("converting from " + source_.name + " to " + target_.name, status);
    }
    return status == NLS_R_SUBSTITUTED;
}

bool Route::runThroughUtf8(const unsigned char *text, std::size_t size, ByteBuffer &out) {
    utf8_.resize(0);
    const bool first = run(toUtf8_, text, size, utf8_);
    const bool second =
        run(fromUtf8_, reinterpret_cast<const unsigned char *>(utf8_.data()), utf8_.size(), out);
    return first || second;
}

void Route::findSilentCodes() {
    std::vector<unsigned char> singles;
    std::vector<unsigned char> row;
    for (unsigned byte = 0; byte < 256; ++byte) {
        if (source_.trailCount[byte] == 0) {
            singles.push_back(static_cast<unsigned char>(byte));
            continue;
        }
        row.clear();
        for (unsigned trail = 0; trail < 256; ++trail) {
            if (source_.trailValid[trail] != 0) {
                row.push_back(static_cast<unsigned char>(byte));
                row.push_back(static_cast<unsigned char>(trail));
            }
        }
        compareCodes(row, 2);
    }
    compareCodes(singles, 1);
    hasSilentCodes_ = silentCodes_.any();
}

// Marks the codes whose direct conversion is not what the way through UTF-8 gives, or where that way
// substitutes. Most rows of codes agree as a whole, so single codes are looked at only where a row differs.
void Route::compareCodes(const std::vector<unsigned char> &codes, std::size_t codeLength) {
    ByteBuffer direct;
    ByteBuffer reference;
    const auto differs = [&](const unsigned char *text, std::size_t size) {
        direct.resize(0);
        reference.resize(0);
        // A direct conversion may even refuse codes that it reads as something else than characters.
        return attempt(direct_, text, size, direct) != NLS_OK || runThroughUtf8(text, size, reference) ||
               !std::equal(direct.data(), direct.data() + direct.size(), reference.data(),
                           reference.data() + reference.size());
    };
    if (codes.empty() || !differs(codes.data(), codes.size())) {
        return;
    }
    for (std::size_t i = 0; i < codes.size(); i += codeLength) {
        if (differs(codes.data() + i, codeLength)) {
            silentCodes_.set(codeLength == 1 ? codes[i] : codes[i] * std::size_t{256} + codes[i + 1]);
        }
    }
}

bool Route::holdsSilentCode(const unsigned char *text, std::size_t size) const {
    std::size_t at = 0;
    while (at < size) {
        const bool isPair = source_.trailCount[text[at]] != 0;
        const std::size_t code = isPair ? text[at] * std::size_t{256} + text[at + 1] : text[at];
        if (silentCodes_.test(code)) {
            return true;
        }
        at += isPair ? 2 : 1;
    }
    return false;
}

} // namespace velnls::tool
