// Shift_JIS to EUC-JP and back by arithmetic on the bytes.
#include "convert/kernels/japanese_bytes.hpp"
#include "convert/kernels/kernels.hpp"

namespace velnls {

namespace {

bool writePair(Target &target, unsigned first, unsigned second) {
    if (target.room() < 2)
        return false;
    target.at[0] = static_cast<std::uint8_t>(first);
    target.at[1] = static_cast<std::uint8_t>(second);
    target.at += 2;
    return true;
}

bool writeByte(Target &target, std::uint8_t byte) {
    if (target.room() < 1)
        return false;
    *target.at++ = byte;
    return true;
}

bool writeAsEuc(Target &target, unsigned lead, unsigned trail) {
    if (trail < 0x40 || trail > 0xFC)
        return writePair(target, lead, trail);
    const unsigned first = (lead - (lead < 0xA0 ? 0x70 : 0xB0)) * 2 + 0x80 - (trail < 0x9F ? 1 : 0);
    const unsigned second = trail + 0x80 - (trail < 0x80 ? 0x1F : trail < 0x9F ? 0x20 : 0x7E);
    return writePair(target, first, second);
}

bool writeAsShiftJis(Target &target, unsigned lead, unsigned trail) {
    if (trail < 0xA1 || trail > 0xFE)
        return writePair(target, lead, trail);
    const unsigned row = lead - 0x80;
    const unsigned cell = trail - 0x80;
    const unsigned first = (row + 1) / 2 + (row < 0x5F ? 0x70 : 0xB0);
    const unsigned second = cell + (row % 2 == 0 ? 0x7E : cell <= 0x5F ? 0x1F : 0x20);
    return writePair(target, first, second);
}

} // namespace

nlsStatus shiftJisToEuc(Source &source, Target &target) {
    while (source.at < source.end) {
        const std::uint8_t byte = *source.at++;
        bool fits = false;
        if (isShiftJisLead(byte)) {
            if (source.at == source.end)
                return NLS_E_NULLARG;
            fits = writeAsEuc(target, byte, *source.at++);
        } else if (isHalfKatakana(byte)) {
            fits = writePair(target, kKatakanaShift, byte);
        } else {
            fits = writeByte(target, byte);
        }
        if (!fits)
            return NLS_E_BUFFER;
    }
    return NLS_OK;
}

nlsStatus eucToShiftJis(Source &source, Target &target) {
    while (source.at < source.end) {
        const std::uint8_t byte = *source.at++;
        const bool paired = isEucByte(byte) || byte == kKatakanaShift;
        if (paired && source.at == source.end)
            return NLS_E_NULLARG;
        bool fits = false;
        if (isEucByte(byte)) {
            fits = writeAsShiftJis(target, byte, *source.at++);
        } else if (byte == kKatakanaShift) {
            const std::uint8_t next = *source.at++;
            fits = isHalfKatakana(next) ? writeByte(target, next) : writePair(target, byte, next);
        } else {
            fits = writeByte(target, byte);
        }
        if (!fits)
            return NLS_E_BUFFER;
    }
    return NLS_OK;
}

} // namespace velnls
