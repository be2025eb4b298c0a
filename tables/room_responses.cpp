#include "tables/room_responses.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "tables/room_parts.h"

namespace zoq::tables {

using android::creal32_T;
using android::kBins;
using android::kFrameSamples;
using android::kHopSamples;
using android::kX2bPartitions;
using android::kX2bResponses;

// Straight ahead; a lateral source at a narrower and a wider angle, whose delays at the other ear, 12 and 24
// samples, are those of heads at 30 and 60 to 65 degrees; a surround loudspeaker.
const std::array<ResponsePlan, kX2bResponses> kResponsePlans = {{
    {0.0, {4, 4}, {0.0834302, 0.0826205}, 0.0},
    {30.0, {5, 17}, {0.0576914, 0.0656744}, 1.0 / 10.0},
    {60.0, {5, 29}, {0.108685, 0.102684}, 1.0 / 30.0},
    {130.0, {7, 26}, {0.14005, 0.157914}, 0.0},
}};

namespace {

constexpr size_t kTaps = kRoomTaps;
constexpr size_t kDirectTaps = 256;
constexpr double kFlattened = 0.75;

// The rendering is to be as loud as the plain path of 0.707 that it replaces.
constexpr double kNearEnergy = 0.5;

// Where the other ear's direct sound is bent to meet the energy ratio, and how far at most.
constexpr double kShelfHz = 1000.0, kShelfLowestDb = -24.0, kShelfHighestDb = 12.0;

// The corner of the high-pass that sets bin 0: low enough to leave the bass whole.
constexpr double kLowestCornerHz = 1.0, kHighestCornerHz = 18.0;

constexpr double kArrivalShare = 0.05;
constexpr size_t kTailFade = 256, kEndFade = 64;

// Cut where the sound begins, so that the arrival is at the tap named whatever share of the peak counts as
// one.
Signal from_arrival(Signal x) {
    double peak = 0.0;
    for (const double value : x) {
        peak = std::max(peak, std::fabs(value));
    }
    const auto first = std::find_if(x.begin(), x.end(),
                                    [&](double value) { return std::fabs(value) >= kArrivalShare * peak; });
    x.erase(x.begin(), first);
    return x;
}

void fade_end(Signal& x, size_t length) {
    for (size_t n = x.size() - length; n < x.size(); ++n) {
        x[n] *= raised_cosine(double(n), double(x.size()), double(x.size() - length));
    }
}

struct Parts {
    EarSignals direct, late;
};

Parts parts(const HeadModel& head, int r) {
    const double azimuth = kResponsePlans[size_t(r)].azimuth;
    Parts made;
    const HeadModel::Ears heard = head.towards({azimuth, 0.0}, kFlattened);
    made.late = early_reflections(head, azimuth, kTaps);
    const EarSignals tail = diffuse_tail(101 + unsigned(r), kTaps);
    for (size_t ear = 0; ear < 2; ++ear) {
        made.direct[ear] = minimum_phase(heard.magnitude[ear], kDirectTaps);
        std::transform(tail[ear].begin(), tail[ear].end(), made.late[ear].begin(), made.late[ear].begin(),
                       std::plus());
    }
    return made;
}

// Direct sound at its tap, the room behind it.
Signal placed(const Signal& direct, const Signal& late, int arrivalTap, int roomTap) {
    Signal x(kTaps, 0.0);
    std::copy(late.begin(), late.end() - roomTap, x.begin() + roomTap);
    std::fill(x.begin(), x.begin() + arrivalTap, 0.0);
    const Signal sound = from_arrival(direct);
    for (size_t n = 0; n < sound.size(); ++n) {
        x[size_t(arrivalTap) + n] += sound[n];
    }
    fade_end(x, kTailFade);
    return x;
}

// A high-pass below hearing makes the first partition sum to bin 0.
Signal with_bin0(const Signal& x, double bin0) {
    const Signal partition(x.begin(), x.begin() + kHopSamples);
    const auto excess = [&](double hz) {
        const Signal taps = filtered(highpass(hz), partition);
        return std::accumulate(taps.begin(), taps.end(), -bin0);
    };
    const auto corner = find_root(excess, kLowestCornerHz, kHighestCornerHz);
    if (!corner) {
        throw HeadError(
            "the head's bass is too unusual to be brought to the rooms' level; use a set measured in free "
            "field, without a room in it");
    }
    Signal y = filtered(highpass(*corner), x);
    fade_end(y, kEndFade);
    return y;
}

EarSignals response(const Parts& made, const ResponsePlan& plan, double shelfDb) {
    EarSignals ears;
    for (size_t ear = 0; ear < 2; ++ear) {
        const Signal direct =
            ear == kSameSide ? made.direct[ear] : filtered(shelf(kShelfHz, shelfDb), made.direct[ear]);
        ears[ear] = placed(direct, made.late[ear], plan.arrivalTap[ear], plan.arrivalTap[kSameSide]);
    }
    const double scale = std::sqrt(kNearEnergy / energy(ears[kSameSide]));
    for (size_t ear = 0; ear < 2; ++ear) {
        for (double& value : ears[ear]) {
            value *= scale;
        }
        ears[ear] = with_bin0(ears[ear], plan.bin0[ear]);
    }
    return ears;
}

EarSignals make_response(const HeadModel& head, int r) {
    const ResponsePlan& plan = kResponsePlans[size_t(r)];
    const Parts made = parts(head, r);
    if (plan.energyRatio == 0.0) {
        return response(made, plan, 0.0);
    }
    const auto excess = [&](double shelfDb) {
        const EarSignals ears = response(made, plan, shelfDb);
        return std::log(energy(ears[kOppositeSide]) / energy(ears[kSameSide]) / plan.energyRatio);
    };
    const auto shelfDb = find_root(excess, kShelfLowestDb, kShelfHighestDb);
    if (!shelfDb) {
        throw HeadError("the head's ears differ too much or too little at azimuth " +
                        std::to_string(std::lround(plan.azimuth)) +
                        " degrees to meet the rooms' energy ratio; check that the set is of a head");
    }
    return response(made, plan, *shelfDb);
}

void store(const Signal& x, int r, std::vector<creal32_T>& table) {
    for (int p = 0; p < kX2bPartitions; ++p) {
        const auto from = x.begin() + std::ptrdiff_t{p} * kHopSamples;
        const Signal taps(from, from + kHopSamples);
        const Spectrum bins = transform(taps, kFrameSamples);
        creal32_T* row = &table[first_bin(p, r)];
        for (size_t k = 0; k < kBins; ++k) {
            row[k] = {float(bins[k].real()), float(bins[k].imag())};
        }
        row[0].im = row[kBins - 1].im = 0.0f;
    }
}

bool finite(const std::vector<creal32_T>& table) {
    return std::all_of(table.begin(), table.end(),
                       [](creal32_T bin) { return std::isfinite(bin.re) && std::isfinite(bin.im); });
}

}  // namespace

RoomResponses make_room_responses(const Head& head) {
    const HeadModel model(head);
    const size_t size = first_bin(kX2bPartitions, 0);
    RoomResponses rooms{std::vector<creal32_T>(size), std::vector<creal32_T>(size)};
    for (int r = 0; r < kX2bResponses; ++r) {
        const EarSignals ears = make_response(model, r);
        store(ears[kSameSide], r, rooms.sameSide);
        store(ears[kOppositeSide], r, rooms.oppositeSide);
    }
    if (!finite(rooms.sameSide) || !finite(rooms.oppositeSide)) {
        throw HeadError("the head's levels are too far apart for its rooms' values; check the set's levels");
    }
    return rooms;
}

}  // namespace zoq::tables
