#include "tools/zoq/tuning/eq_fit.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <memory>

#include "tools/zoq/tuning/eq_design.h"
#include "zoq2processing.h"

namespace zoq {

namespace {

using android::kGeqBands;

constexpr int kUnknowns = kGeqBands + 1;  // the gains and the level
constexpr int kPointsPerOctave = 24;
constexpr int kMostSteps = 200;
constexpr double kGainStep = 0.01;  // dB, of the gains given out

// Half the difference quotient's width in dB: wide against the rounding of the engine's float coefficients, narrow
// against the curvature of the response.
constexpr double kDifferenceDb = 0.25;

using Parameters = Eigen::Matrix<double, kUnknowns, 1>;
using Normal = Eigen::Matrix<double, kUnknowns, kUnknowns>;

const android::parameterGEQ& factory() {
    static const android::parameterGEQ record = [] {
        struct Records {
            android::parameterDEN den;
            android::parameterTWS tws;
            android::parameterEQ eq;
            android::parameterDRC drc;
            android::parameterVB vb;
            android::parameterX2B x2b;
            android::parameterGEQ geq;
        };
        const auto all = std::make_unique<Records>();
        android::stereoWidening_initialization(80.0f, &all->den, &all->tws, &all->eq, &all->drc, &all->vb,
                                               &all->x2b, &all->geq);
        return all->geq;
    }();
    return record;
}

EqSection band_section(int band, double gainDb) {
    float b[3], a[3];
    android::il_iirpeaking2(factory().bandWarp[band], static_cast<float>(gainDb), factory().bandQ, b, a);
    return {double(b[0]), double(b[1]), double(b[2]), double(a[0]), double(a[1]), double(a[2])};
}

std::vector<double> grid(double lo, double hi) {
    const auto steps = std::max(1, static_cast<int>(std::lround(kPointsPerOctave * std::log2(hi / lo))));
    std::vector<double> hz;
    for (int i = 0; i <= steps; ++i) {
        hz.push_back(lo * std::pow(hi / lo, double(i) / steps));
    }
    return hz;
}

// Levenberg and Marquardt's method with the gains kept inside +-limit.
class Fit {
  public:
    Fit(const std::vector<double>& hz, const std::vector<double>& target, double limit)
        : hz_(hz), target_(target), limit_(limit) {}

    Parameters run() {
        Parameters p = Parameters::Zero();
        p[kGeqBands] = mean(target_);
        double cost = residual(p).squaredNorm(), damping = 1e-3;
        for (int step = 0; step < kMostSteps && damping < 1e9; ++step) {
            const Parameters next = kept(p + proposal(p, damping));
            const double nextCost = residual(next).squaredNorm();
            if (nextCost < cost) {
                damping = std::max(damping / 4.0, 1e-9);
                const bool done = (next - p).cwiseAbs().maxCoeff() < kGainStep / 100.0;
                p = next;
                cost = nextCost;
                if (done) {
                    break;
                }
            } else {
                damping *= 4.0;
            }
        }
        return p;
    }

  private:
    static double mean(const std::vector<double>& values) {
        double sum = 0.0;
        for (const double value : values) {
            sum += value;
        }
        return sum / double(values.size());
    }

    Eigen::VectorXd residual(const Parameters& p) const {
        Eigen::VectorXd r(static_cast<Eigen::Index>(hz_.size()));
        BandGains gains;
        std::copy_n(p.data(), kGeqBands, gains.begin());
        for (size_t i = 0; i < hz_.size(); ++i) {
            r[static_cast<Eigen::Index>(i)] = p[kGeqBands] - target_[i];
        }
        for (int band = 0; band < kGeqBands; ++band) {
            r += response(band, p[band]);
        }
        return r;
    }

    Eigen::VectorXd response(int band, double gainDb) const {
        Eigen::VectorXd db(static_cast<Eigen::Index>(hz_.size()));
        const EqSection section = band_section(band, gainDb);
        for (size_t i = 0; i < hz_.size(); ++i) {
            db[static_cast<Eigen::Index>(i)] = section_db(section, hz_[i]);
        }
        return db;
    }

    // The step for a damping; a band that stands at its limit and wants further out stays.
    Parameters proposal(const Parameters& p, double damping) const {
        Eigen::MatrixXd J(static_cast<Eigen::Index>(hz_.size()), kUnknowns);
        for (int band = 0; band < kGeqBands; ++band) {
            J.col(band) =
                (response(band, p[band] + kDifferenceDb) - response(band, p[band] - kDifferenceDb)) /
                (2.0 * kDifferenceDb);
        }
        J.col(kGeqBands).setOnes();
        Parameters gradient = J.transpose() * residual(p);
        Normal normal = J.transpose() * J;
        for (int band = 0; band < kGeqBands; ++band) {
            const bool stuck = std::fabs(p[band]) >= limit_ && gradient[band] * p[band] < 0.0;
            if (stuck) {
                normal.row(band).setZero();
                normal.col(band).setZero();
                normal(band, band) = 1.0;
                gradient[band] = 0.0;
            }
        }
        normal.diagonal() *= 1.0 + damping;
        return -normal.ldlt().solve(gradient);
    }

    Parameters kept(Parameters p) const {
        for (int band = 0; band < kGeqBands; ++band) {
            p[band] = std::clamp(p[band], -limit_, limit_);
        }
        return p;
    }

    const std::vector<double>& hz_;
    const std::vector<double>& target_;
    double limit_;
};

// Level, residual and peak of the gains as they are given out.
void measure(EqFit& fit) {
    double sum = 0.0, squares = 0.0;
    for (size_t i = 0; i < fit.hz.size(); ++i) {
        fit.responseDb.push_back(band_response_db(fit.gainDb, fit.hz[i]));
        sum += fit.targetDb[i] - fit.responseDb[i];
    }
    fit.levelDb = sum / double(fit.hz.size());
    for (size_t i = 0; i < fit.hz.size(); ++i) {
        const double difference = fit.responseDb[i] + fit.levelDb - fit.targetDb[i];
        squares += difference * difference;
        if (i == 0 || std::fabs(difference) > std::fabs(fit.worstDb)) {
            fit.worstDb = difference;
            fit.worstHz = fit.hz[i];
        }
        if (i == 0 || fit.responseDb[i] > fit.peakDb) {
            fit.peakDb = fit.responseDb[i];
            fit.peakHz = fit.hz[i];
        }
    }
    fit.rmsDb = std::sqrt(squares / double(fit.hz.size()));
}

}  // namespace

EqFit fit_bands(const std::function<double(double hz)>& targetDb, const EqFitOptions& options) {
    EqFit fit{};
    fit.limitDb = options.limitDb;
    fit.hz = grid(options.loHz, options.hiHz);
    for (const double hz : fit.hz) {
        fit.targetDb.push_back(targetDb(hz));
    }
    const Parameters found = Fit(fit.hz, fit.targetDb, options.limitDb).run();
    for (int band = 0; band < kGeqBands; ++band) {
        fit.gainDb[static_cast<size_t>(band)] = std::round(found[band] / kGainStep) * kGainStep + 0.0;
    }
    measure(fit);
    return fit;
}

double band_response_db(const BandGains& gainDb, double hz) {
    double sum = 0.0;
    for (int band = 0; band < kGeqBands; ++band) {
        sum += section_db(band_section(band, gainDb[static_cast<size_t>(band)]), hz);
    }
    return sum;
}

}  // namespace zoq
