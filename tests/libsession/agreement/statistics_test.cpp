#include "agreement/bootstrap.hpp"
#include "agreement/confusiontable.hpp"
#include "agreement/moments.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

// The figures are computed by hand; agreement_test.py compares all of them with SciPy and scikit-learn.

namespace
{
using KV::session::Bootstrap;
using KV::session::ConfusionTable;
using KV::session::Moments;

constexpr double precision = 1e-12;  // double precision, a few operations

ConfusionTable tableOf(double a, double b, double c, double d)
{
  ConfusionTable table(2);
  table.add(0, 0, a);
  table.add(0, 1, b);
  table.add(1, 0, c);
  table.add(1, 1, d);
  return table;
}

TEST(ConfusionTable, ReportsKappaAccuracyAndF1)
{
  // 35 of 50 agree: p_o = 0.7; rows 25, 25, columns 30, 20: p_e = 0.5 0.6 + 0.5 0.4 = 0.5
  const ConfusionTable table = tableOf(20., 5., 10., 15.);
  EXPECT_NEAR(0.7, *table.accuracy(), precision);
  EXPECT_NEAR(0.4, *table.kappa(), precision);
  EXPECT_NEAR(40. / 55., *table.f1(0), precision);
  EXPECT_NEAR(30. / 45., *table.f1(1), precision);
}

TEST(ConfusionTable, ReportsPerfectAndOppositeAgreement)
{
  EXPECT_NEAR(1., *tableOf(3., 0., 0., 1.).kappa(), precision);
  EXPECT_NEAR(-1., *tableOf(0., 2., 2., 0.).kappa(), precision);
  EXPECT_NEAR(0., *tableOf(1., 1., 1., 1.).kappa(), precision);
}

TEST(ConfusionTable, LeavesUndefinedWhatIsDividedByNothing)
{
  EXPECT_FALSE(ConfusionTable(2).kappa());
  EXPECT_FALSE(ConfusionTable(2).accuracy());
  EXPECT_FALSE(tableOf(5., 0., 0., 0.).kappa()) << "both know one class only";
  EXPECT_FALSE(tableOf(5., 0., 0., 0.).f1(1)) << "neither knows it";
  EXPECT_EQ(0., *tableOf(0., 5., 0., 0.).kappa());
}

TEST(ConfusionTable, AddsUp)
{
  ConfusionTable table = tableOf(10., 5., 0., 10.);
  table.add(tableOf(10., 0., 10., 5.));
  EXPECT_NEAR(0.4, *table.kappa(), precision);
  EXPECT_NEAR(50., table.total(), precision);
}

TEST(Moments, ReportConcordancePearsonAndError)
{
  // x = 0, 1, 2; y = 1, 2, 3: variances and covariance 2/3, means differ by 1
  Moments moments;
  for (const double x : {0., 1., 2.})
    moments.add(x, x + 1., 1.);
  EXPECT_NEAR(4. / 3. / (4. / 3. + 1.), *moments.ccc(), precision);
  EXPECT_NEAR(1., *moments.pearson(), precision);
  EXPECT_NEAR(1., *moments.rmse(), precision);
}

TEST(Moments, CountEachPairByItsTime)
{
  Moments weighted;
  weighted.add(0., 0.5, 3.);
  weighted.add(1., 0.75, 1.);
  Moments repeated;
  for (int i = 0; i < 3; ++i)
    repeated.add(0., 0.5, 1.);
  repeated.add(1., 0.75, 1.);
  EXPECT_NEAR(*repeated.ccc(), *weighted.ccc(), precision);
  EXPECT_NEAR(*repeated.rmse(), *weighted.rmse(), precision);
}

TEST(Moments, LeaveUndefinedWhatIsDividedByNothing)
{
  EXPECT_FALSE(Moments().ccc());
  EXPECT_FALSE(Moments().rmse());
  Moments still;
  for (int i = 0; i < 10; ++i)
    still.add(0.3, 0.1 * i, 0.1);
  EXPECT_FALSE(still.pearson());
  EXPECT_NEAR(0., *still.ccc(), precision);
  Moments same;
  same.add(0.3, 0.3, 1.);
  same.add(0.3, 0.3, 0.7);
  EXPECT_FALSE(same.ccc());
}

struct Sum
{
  double value = 0.;
  void add(const Sum& other) { value += other.value; }
};

std::vector<double> drawn(std::uint64_t seed)
{
  std::vector<double> sums;
  Bootstrap(seed, 200).resample(std::vector<Sum>{{1.}, {10.}, {100.}}, Sum(),
                                [&sums](const Sum& sum) { sums.push_back(sum.value); });
  return sums;
}

TEST(Bootstrap, DrawsTheSameWithTheSameSeed)
{
  EXPECT_EQ(drawn(1), drawn(1));
  EXPECT_NE(drawn(1), drawn(2));
}

TEST(Bootstrap, DrawsAsManyUnitsAsThereAre)
{
  for (const double sum : drawn(7))
  {
    const int digits = static_cast<int>(sum);
    EXPECT_EQ(3, digits / 100 + digits / 10 % 10 + digits % 10) << sum;
  }
}

TEST(Bootstrap, ReportsTheMiddleOfTheValues)
{
  std::vector<double> values;
  for (int i = 1000; i >= 0; --i)
    values.push_back(i);
  const auto interval = Bootstrap::interval(values);
  ASSERT_TRUE(interval);
  EXPECT_NEAR(25., interval->first, 1e-9);
  EXPECT_NEAR(975., interval->second, 1e-9);
  EXPECT_FALSE(Bootstrap::interval({}));
}

}  // namespace
