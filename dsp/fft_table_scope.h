// What lets the transforms of one hop look at the table of the bit reversal only once.
#pragma once

namespace android {

// For as long as one lives, nobody writes fft_table. One at a time, on the audio thread.
class UnchangedFftTable {
  public:
    UnchangedFftTable();
    ~UnchangedFftTable();
    UnchangedFftTable(const UnchangedFftTable&) = delete;
    UnchangedFftTable& operator=(const UnchangedFftTable&) = delete;
};

}  // namespace android
