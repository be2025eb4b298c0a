// A second-order section in double precision, written as the state equations of the transposed direct form:
// y = z0 + b0 x and (z0, z1)' = A (z0, z1) + B x.
#pragma once

#include <cmath>
#include <vector>

#include "dsp/section.h"

struct SectionModel {
    double b0, a1, a2, in0, in1, z0 = 0.0, z1 = 0.0;

    // Coefficients as a record holds them; an a0 of 0 counts as 1.
    SectionModel(const float* b, const float* a) {
        const double a0 = a[0] == 0.0f ? 1.0 : double(a[0]);
        b0 = double(b[0]) / a0;
        a1 = double(a[1]) / a0;
        a2 = double(a[2]) / a0;
        in0 = double(b[1]) / a0 - a1 * b0;
        in1 = double(b[2]) / a0 - a2 * b0;
    }

    double operator()(double x) {
        const double y = z0 + b0 * x;
        const double next = z1 - a1 * z0 + in0 * x;
        z1 = in1 * x - a2 * z0;
        z0 = next;
        return y;
    }

    // What white rounding noise inside the recursion is amplified by (rms): the root of the energy of 1/A.
    double noise_gain() const {
        double energy = 0.0, y1 = 0.0, y2 = 0.0, x = 1.0;
        for (int n = 0; n < 100000; ++n, x = 0.0) {
            const double y = x - a1 * y1 - a2 * y2;
            energy += y * y;
            y2 = y1;
            y1 = y;
        }
        return std::sqrt(energy);
    }
};

struct CascadeModel : std::vector<SectionModel> {
    CascadeModel(const float* matrix, int sections) {
        for (int s = 0; s < sections; ++s) {
            const float b[3] = {matrix[s], matrix[3 + s], matrix[6 + s]};
            const float a[3] = {matrix[9 + s], matrix[12 + s], matrix[15 + s]};
            emplace_back(b, a);
        }
    }

    double operator()(double x) {
        for (SectionModel& section : *this) {
            x = section(x);
        }
        return x;
    }
};
