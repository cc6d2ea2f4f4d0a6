// How fast the modal calculation is. An argument "check" compares the non-negative solver with an
// exhaustive search over Eigen's least squares instead.
#include <benchmark/benchmark.h>

#if __has_include(<eigen3/Eigen/Dense>)
#include <eigen3/Eigen/Dense>
#define LODEX_HAS_EIGEN
#endif

#include <cmath>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <random>
#include <vector>

#include "chem/ReferenceTables.h"
#include "modal/LinearModels.h"
#include "modal/RetAndCalc.h"
#include "modal/SetUp.h"

namespace {

using namespace lodex;

constexpr int equations = 12;
constexpr int unknowns = 8;

// Minerals of twelve elements that sum up to one, and samples mixed from them with some noise.
struct Mixtures {
  explicit Mixtures(int samples) : a(equations * unknowns), b(static_cast<size_t>(samples)) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> uniform(0, 1);
    for (int j = 0; j < unknowns; ++j) {
      double sum = 0;
      for (int i = 0; i < equations; ++i) {
        double& content = a[static_cast<size_t>(i + j * equations)];
        content = uniform(random) < 0.4 ? uniform(random) : 0;
        sum += content;
      }
      a[static_cast<size_t>(j % equations + j * equations)] += 0.2;
      sum += 0.2;
      for (int i = 0; i < equations; ++i) a[static_cast<size_t>(i + j * equations)] /= sum;
    }
    for (auto& assay : b) {
      assay.assign(equations, 0);
      for (int j = 0; j < unknowns; ++j) {
        const double amount = uniform(random) < 0.25 ? 0 : 25 * uniform(random);
        for (int i = 0; i < equations; ++i) {
          assay[static_cast<size_t>(i)] += amount * a[static_cast<size_t>(i + j * equations)];
        }
      }
      for (double& value : assay) value *= 1 + 0.02 * (uniform(random) - 0.5);
    }
  }
  std::vector<double> a;
  std::vector<std::vector<double>> b;
};

void solveNnls(benchmark::State& state) {
  const Mixtures mixtures(4096);
  LinearModels models;
  models.start(EstimationModel::NonNegative, equations, unknowns, mixtures.a.data());
  std::vector<double> x(unknowns);
  size_t sample = 0;
  for (auto _ : state) {
    models.solve(mixtures.b[sample++ % mixtures.b.size()].data(), x.data(), nullptr);
    benchmark::DoNotOptimize(x.data());
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(solveNnls);

void solveSvd(benchmark::State& state) {
  const Mixtures mixtures(64);
  LinearModels models;
  std::vector<double> x(unknowns);
  size_t sample = 0;
  for (auto _ : state) {
    models.start(EstimationModel::WeighedLeastSquare, equations, unknowns, mixtures.a.data());
    models.solve(mixtures.b[sample++ % mixtures.b.size()].data(), x.data(), nullptr);
    benchmark::DoNotOptimize(x.data());
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(solveSvd);

// A batch run from a data sheet to the finished result sheets, the mineral database left out.
void calculateBatch(benchmark::State& state) {
  const int samples = static_cast<int>(state.range(0));
  const Mixtures mixtures(samples);
  ConsoleDialogs dialogs(std::cerr, {});
  NoEvents events;
  MemoryClipboard clipboard;
  Session session(Services{dialogs, events, clipboard});
  Worksheet F1ELoc, F1CalcOpt, sheet;
  frmResult result;
  frmSolve solver(dialogs);
  ModalScratch scratch;
  ModalLists lists;

  const char* elements[] = {"Si", "Ti", "Al", "Fe", "Mn", "Mg", "Ca", "Na", "K", "P", "S", "Cu"};
  SetUpRound round;
  round.model = 2;
  sheet.TextRC(1, 1, "Sample");
  for (int i = 0; i < equations; ++i) {
    F1ELoc.TextRC(i + 1, eloc::Element, elements[i]);
    F1ELoc.TextRC(i + 1, eloc::Form, std::string(elements[i]) + " %");
    F1ELoc.NumberRC(i + 1, eloc::Multiplier, 1);
    round.equations.push_back({assayItem(elements[i], i + 1, firstMethod), {}});
    sheet.TextRC(1, i + 2, elements[i]);
  }
  for (int j = 0; j < unknowns; ++j) {
    const std::string number = std::to_string(j + 1);
    round.minerals.push_back({"M/Min" + number + "/" + number, false, false});
  }
  storeRound(F1CalcOpt, 1, round, "");
  collectMinerals(F1CalcOpt, lists);
  for (int s = 0; s < samples; ++s) {
    sheet.NumberRC(s + 2, 1, s + 1);
    for (int i = 0; i < equations; ++i) {
      sheet.NumberRC(s + 2, i + 2, mixtures.b[static_cast<size_t>(s)][static_cast<size_t>(i)]);
    }
  }
  ModalRequest request;
  request.F1CalcOpt = &F1CalcOpt;
  request.F1ELoc = &F1ELoc;
  request.setUpName = "bench";
  const AssaySheet source{&sheet, 1, 1, 0, 0, 2, 1};

  for (auto _ : state) {
    result.F1Ini = Worksheet();
    result.F1Kirja = Worksheet();
    Findings found;
    retrieveAssays(source, F1ELoc, lists, result, {found});
    for (int j = 0; j < unknowns; ++j) {
      for (int i = 0; i < equations; ++i) {
        const double content = mixtures.a[static_cast<size_t>(i + j * equations)];
        if (content > 0) result.F1Min.NumberRC(i + 1, j + 1, content * 100);
        result.F1Disso.NumberRC(i + 1, j + 1, 1);
      }
    }
    RetAndCalc(request, ModalMode::SolveAgain, lists, result, solver, scratch, session);
  }
  state.SetItemsProcessed(state.iterations() * samples);
}
BENCHMARK(calculateBatch)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

#ifdef LODEX_HAS_EIGEN
// The best of all least square solutions over a subset of the columns that are not negative.
Eigen::VectorXd bestSubset(const Eigen::MatrixXd& a, const Eigen::VectorXd& b) {
  const int n = static_cast<int>(a.cols());
  Eigen::VectorXd best = Eigen::VectorXd::Zero(n);
  double least = b.norm();
  for (unsigned subset = 1; subset < 1u << n; ++subset) {
    std::vector<int> columns;
    for (int j = 0; j < n; ++j) {
      if (subset >> j & 1) columns.push_back(j);
    }
    const Eigen::MatrixXd part = a(Eigen::all, columns);
    const Eigen::VectorXd x = part.householderQr().solve(b);
    const double residual = (part * x - b).norm();
    if (x.minCoeff() < 0 || residual >= least) continue;
    least = residual;
    best.setZero();
    best(columns) = x;
  }
  return best;
}

// The largest difference to that over random systems of many shapes.
int check() {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> uniform(-0.2, 1);
  double worst = 0;
  constexpr int problems = 3000;
  for (int problem = 0; problem < problems; ++problem) {
    const int n = 1 + static_cast<int>(random() % 8);
    const int m = n + static_cast<int>(random() % 12);
    Eigen::MatrixXd a(m, n);
    Eigen::VectorXd b(m);
    for (int i = 0; i < m; ++i) {
      b(i) = uniform(random);
      for (int j = 0; j < n; ++j) a(i, j) = uniform(random);
    }
    const Eigen::VectorXd expected = bestSubset(a, b);
    LinearModels models;
    models.start(EstimationModel::NonNegative, m, n, a.data());
    std::vector<double> x(static_cast<size_t>(n));
    models.solve(b.data(), x.data(), nullptr);
    for (int j = 0; j < n; ++j) {
      worst = std::max(worst, std::abs(x[static_cast<size_t>(j)] - expected(j)));
    }
  }
  std::printf("%d systems compared, largest difference %.3g\n", problems, worst);
  return worst <= 1e-9 ? 0 : 1;
}
#endif

}  // namespace

int main(int argc, char** argv) {
#ifdef LODEX_HAS_EIGEN
  if (argc > 1 && std::strcmp(argv[1], "check") == 0) return check();
#endif
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
