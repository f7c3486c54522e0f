// The value notation: reading numbers, the expression evaluator, printing, positions.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>
#include <limits>

#include "script/values.h"

namespace {

constexpr int64_t maxnat = std::numeric_limits<int64_t>::max();
constexpr int64_t minnat = std::numeric_limits<int64_t>::min();

// Every test starts from the default settings and leaves the global settings as it found them.
class Values : public ::testing::Test {
 protected:
  void SetUp() override {
    saved = numbersettings;
    numbersettings = tnumbersettings();
  }
  void TearDown() override { numbersettings = saved; }
  tnumbersettings saved;
};

std::string str(const utf16& v) { return utf16toutf8(v); }
double real(const std::string& s) { return textreal(utf16(s)); }
int64_t nat(const char* s) { return textnat(utf16(s)); }

// --- reading reals -------------------------------------------------------------------

TEST_F(Values, PlainNumbersReadExactly) {
  EXPECT_EQ(real("1.5"), 1.5);
  EXPECT_EQ(real("-3"), -3.0);
  EXPECT_EQ(real("1e-3"), 0.001);
  EXPECT_EQ(real("1E3"), 1000.0);  // upper case is read too
  EXPECT_EQ(real("-.5"), -0.5);
  EXPECT_EQ(real("1e400"), HUGE_VAL);
  EXPECT_EQ(real("1e-400"), 0.0);
  EXPECT_EQ(real("0." + std::string(400, '0') + "1"), 0.0);  // underflow without an exponent
}

TEST_F(Values, TextWithoutNumberIsZero) {
  EXPECT_EQ(real(""), 0.0);
  EXPECT_EQ(real("abc"), 0.0);
  EXPECT_EQ(real("\"true\""), 0.0);
  EXPECT_EQ(real("<>"), 0.0);
}

TEST_F(Values, WordsAndPointsBeforeTheNumberArePassedOver) {
  EXPECT_EQ(real(".5"), 5.0);  // the leading point is no part of the number
  EXPECT_EQ(real("size 12abc"), 12.0);
  EXPECT_EQ(real("λ5"), 5.0);
  EXPECT_EQ(real("1λ2"), 1.0);  // a character above 255 ends the run
}

TEST_F(Values, CutRealConsumesFromTheFront) {
  utf16 t("<1, 2, 3>");
  EXPECT_EQ(cutreal(t), 1.0);
  EXPECT_EQ(cutreal(t), 2.0);
  EXPECT_EQ(cutreal(t), 3.0);
  EXPECT_TRUE(empty(t));
  EXPECT_EQ(cutreal(t), 0.0);

  utf16 words("a1 b2");
  EXPECT_EQ(cutreal(words), 1.0);
  EXPECT_EQ(str(words), " b2");
  EXPECT_EQ(cutreal(words), 2.0);

  utf16 none("no number");
  EXPECT_EQ(cutreal(none), 0.0);
  EXPECT_TRUE(empty(none));
}

TEST_F(Values, RestKeepsTheCallersSpelling) {
  utf16 t("5% Rest°");
  EXPECT_EQ(cutreal(t), 0.05);
  EXPECT_EQ(str(t), " Rest°");
  utf16 u("1λ2");
  EXPECT_EQ(cutreal(u), 1.0);
  EXPECT_EQ(str(u), "λ2");
  EXPECT_EQ(cutreal(u), 2.0);
}

TEST_F(Values, UnitSigns) {
  EXPECT_EQ(real("50%"), 0.5);
  EXPECT_EQ(real("90°"), 1.5707963267948966);
  EXPECT_EQ(real("180°"), M_PI);
  EXPECT_EQ(real("π"), M_PI);
  EXPECT_EQ(real("2*π"), 2 * M_PI);
  EXPECT_EQ(real("°"), 0.017453292519943295);
}

TEST_F(Values, DecimalCommaMode) {
  numbersettings.decimal = false;
  EXPECT_EQ(real("1,5"), 1.5);
  EXPECT_EQ(real("1.5"), 1.0);  // the point now ends the number
  EXPECT_EQ(real("50%"), 0.5);
  EXPECT_EQ(real("90°"), 1.5707963267948966);
  utf16 t("<1,5; 2>");
  EXPECT_EQ(cutreal(t), 1.5);
  EXPECT_EQ(cutreal(t), 2.0);
}

// --- the evaluator ----------------------------------------------------------------

TEST_F(Values, ProductsBindStrongerThanSums) {
  EXPECT_EQ(real("1+2*3"), 7.0);
  EXPECT_EQ(real("2*3-1"), 5.0);
  EXPECT_EQ(real("-2*3"), -6.0);
}

TEST_F(Values, OperatorsOfOneRankBindToTheLeft) {
  EXPECT_EQ(real("10/2/5"), 1.0);
  EXPECT_EQ(real("1-2-3"), -4.0);
  EXPECT_EQ(real("1<2*5"), 5.0);  // (1<2)*5
}

TEST_F(Values, ExponentsKeepTheirSignInsideExpressions) {
  EXPECT_EQ(real("2*1e-3"), 0.002);
  EXPECT_EQ(real("1e+3*2"), 2000.0);
  EXPECT_EQ(real("1-2e-3"), 0.998);
  EXPECT_EQ(expression("1i3"), 0.001);
}

TEST_F(Values, DivisionByZeroIsZero) {
  EXPECT_EQ(real("6/0"), 0.0);
  EXPECT_EQ(real("6/0+1"), 1.0);
}

TEST_F(Values, Comparisons) {
  EXPECT_EQ(real("1<2"), 1.0);
  EXPECT_EQ(real("2<1"), 0.0);
  EXPECT_EQ(real("1<=1"), 1.0);
  EXPECT_EQ(real("1<>1"), 0.0);
  EXPECT_EQ(real("1<>2"), 1.0);
  EXPECT_EQ(real("2>1"), 1.0);
  EXPECT_EQ(real("2>=2"), 1.0);
  EXPECT_EQ(real("1>=2"), 0.0);
  EXPECT_EQ(real("2=2"), 1.0);
  EXPECT_EQ(real("2=3"), 0.0);
  // two-character comparisons with nothing behind them
  EXPECT_EQ(real("5<="), 0.0);
}

TEST_F(Values, BitOperatorsTruncate) {
  EXPECT_EQ(real("3&1"), 1.0);
  EXPECT_EQ(real("6|1"), 7.0);
  EXPECT_EQ(real("5.9&7"), 5.0);
  EXPECT_EQ(real("12&10|1"), 9.0);  // (12&10)|1
}

TEST_F(Values, ShortTailsAndEmptyRuns) {
  EXPECT_EQ(real("1+"), 1.0);
  EXPECT_EQ(real("-"), 0.0);
  EXPECT_EQ(real("1e"), 0.0);  // a term that does not convert
  EXPECT_EQ(expression(""), 0.0);
  EXPECT_EQ(expression("-"), 0.0);
}

TEST_F(Values, IntermediateValuesPassThroughText) {
  // 1e-20 has no digit among 16 decimals, so the product restarts from 0.
  EXPECT_EQ(real("1e-20*1*1e20"), 0.0);
  EXPECT_EQ(real("1e-20*1e20"), 1.0);
  // The intermediate text is the evaluator's own, whatever the display settings.
  numbersettings.scientific = true;
  EXPECT_EQ(real("0.001*2+1"), 1.002);
  numbersettings.scientific = false;
  numbersettings.decimal = false;
  EXPECT_EQ(real("1,5*3+1"), 5.5);
}

// --- nats, vectors, booleans -----------------------------------------------------------

TEST_F(Values, NatsRoundTiesToEven) {
  EXPECT_EQ(nat("12"), 12);
  EXPECT_EQ(nat("2.5"), 2);
  EXPECT_EQ(nat("3.5"), 4);
  EXPECT_EQ(nat("-2.5"), -2);
  EXPECT_EQ(nat("2*3+1"), 7);
  EXPECT_EQ(nat("7/2"), 4);
  EXPECT_EQ(nat("1E3"), 1000);
}

TEST_F(Values, NatsAreExactAndClamped) {
  EXPECT_EQ(nat("9007199254740993"), 9007199254740993);  // 2^53 + 1, beyond a double
  EXPECT_EQ(nat("9223372036854775807"), maxnat);
  EXPECT_EQ(nat("99999999999999999999"), maxnat);
  EXPECT_EQ(nat("-99999999999999999999"), minnat);
  EXPECT_EQ(nat("1e30"), maxnat);
}

TEST_F(Values, NatsIgnoreUnitSigns) {
  EXPECT_EQ(nat("50%"), 50);
  EXPECT_EQ(nat("90°"), 90);
  utf16 t("<4, 5>");
  EXPECT_EQ(cutnat(t), 4);
  EXPECT_EQ(cutnat(t), 5);
  EXPECT_EQ(cutnat(t), 0);
}

TEST_F(Values, VectorsReadComponentsInTurn) {
  EXPECT_EQ(textvector(utf16("<1, 2, 3>")), (tvector{1, 2, 3}));
  EXPECT_EQ(textvector(utf16("<1, 2>")), (tvector{1, 2, 0}));
  EXPECT_EQ(textvector(utf16("5")), (tvector{5, 0, 0}));
  EXPECT_EQ(textvector(utf16("<2*3, -1, 50%>")), (tvector{6, -1, 0.5}));
  EXPECT_EQ(texthyper(utf16("<1, 2, 3, 4>")), (thyper{1, 2, 3, 4}));
  EXPECT_EQ(textcomplex(utf16("<1, -2>")), (tcomplex{1, -2}));
  EXPECT_EQ(textnatvector(utf16("<1.4, 2.6, 3>")), (tnatvector{1, 3, 3}));
  EXPECT_EQ(textnathyper(utf16("<1, 2>")), (tnathyper{1, 2, 0, 0}));
  numbersettings.decimal = false;
  EXPECT_EQ(textvector(utf16("<1,5; 2>")), (tvector{1.5, 2, 0}));
}

TEST_F(Values, Booleans) {
  for (const char* yes : {"1", "+", "on", "OK", " true ", "Yes", "ja", "hello", "2", "0.6", "2*3"})
    EXPECT_TRUE(textbool(utf16(yes))) << yes;
  for (const char* no : {"", "  ", "0", "-1", "0.4", "0.5", "off", "no", "false", "\"true\"", "abc"})
    EXPECT_FALSE(textbool(utf16(no))) << no;
}

// --- printing ---------------------------------------------------------------------

TEST_F(Values, RealsLoseBinaryNoise) {
  EXPECT_EQ(str(realtext(1.1000000000000001)), "1.1");
  EXPECT_EQ(str(realtext(0.1 + 0.2)), "0.3");
  EXPECT_EQ(str(realtext(1.0 + std::ldexp(1.0, -52))), "1");
  EXPECT_EQ(str(realtext(1.0000000000000102)), "1.00000000000001");
  // digits without a run of zeros before them are no noise
  EXPECT_EQ(str(realtext(2.0 / 3)), "0.6666666666666666");
  EXPECT_EQ(str(realtext(M_PI)), "3.1415926535897931");
}

TEST_F(Values, RealsScientific) {
  numbersettings.scientific = true;
  EXPECT_EQ(str(realtext(0.00123)), "123E-5");
  EXPECT_EQ(str(realtext(0.001)), "1E-3");
  EXPECT_EQ(str(realtext(12000)), "12E3");
  EXPECT_EQ(str(realtext(-500)), "-5E2");
  EXPECT_EQ(str(realtext(0.05)), "0.05");
  EXPECT_EQ(str(realtext(0)), "0");
}

TEST_F(Values, RealsDecimalComma) {
  numbersettings.decimal = false;
  EXPECT_EQ(str(realtext(1.5)), "1,5");
  EXPECT_EQ(str(realtext(-0.25)), "-0,25");
  numbersettings.scientific = true;
  EXPECT_EQ(str(realtext(0.0015)), "15E-4");
}

TEST_F(Values, RoundedReals) {
  EXPECT_EQ(str(roundedrealtext(1.5, 2)), "1.50");
  EXPECT_EQ(str(roundedrealtext(2.345, 0)), "2");
  EXPECT_EQ(str(roundedrealtext(1.25, 1)), "1.2");  // exact tie, to even
  EXPECT_EQ(str(roundedrealtext(-0.001, 2)), "0.00");
  EXPECT_EQ(str(roundedrealtext(1.1000000000000001, 16)), "1.1000000000000001");  // no noise rule
  EXPECT_EQ(str(roundedrealtext(7.7, -3)), "8");
  numbersettings.decimal = false;
  EXPECT_EQ(str(roundedrealtext(1.5, 2)), "1,50");
  numbersettings.decimal = true;
  numbersettings.scientific = true;
  EXPECT_EQ(str(roundedrealtext(0.00123, 5)), "123E-5");
}

TEST_F(Values, Nats) {
  EXPECT_EQ(str(nattext(12)), "12");
  EXPECT_EQ(str(nattext(-3)), "-3");
  EXPECT_EQ(str(nattext(minnat)), "-9223372036854775808");
}

TEST_F(Values, NatDigitGroups) {
  numbersettings.digit = true;
  EXPECT_EQ(str(nattext(999)), "999");
  EXPECT_EQ(str(nattext(1000)), "1,000");
  EXPECT_EQ(str(nattext(1234567)), "1,234,567");
  EXPECT_EQ(str(nattext(-123456)), "-123,456");
  numbersettings.decimal = false;
  EXPECT_EQ(str(nattext(1234)), "1.234");
}

TEST_F(Values, NatScientific) {
  numbersettings.scientific = true;
  EXPECT_EQ(str(nattext(12000)), "12E3");
  EXPECT_EQ(str(nattext(-500)), "-5E2");
  EXPECT_EQ(str(nattext(10)), "1E1");
  EXPECT_EQ(str(nattext(0)), "0");
  numbersettings.digit = true;
  EXPECT_EQ(str(nattext(1234)), "1,234");
}

TEST_F(Values, PrintedNumbersReadBack) {
  for (double x : {0.1, 1.5, -2.75, 123456.789, 0.00123, 12000.0, 1e-7}) {
    for (bool scientific : {false, true}) {
      numbersettings.scientific = scientific;
      EXPECT_EQ(textreal(realtext(x)), x) << x << " scientific " << scientific;
    }
  }
  numbersettings.scientific = true;
  EXPECT_EQ(textnat(nattext(12000)), 12000);
  EXPECT_EQ(textnat(nattext(-500)), -500);
}

TEST_F(Values, ShortestVectorForm) {
  EXPECT_EQ(str(vectortext({5, 0, 0})), "5");
  EXPECT_EQ(str(vectortext({0, 0, 0})), "0");
  EXPECT_EQ(str(vectortext({1, 2, 0})), "<1, 2>");
  EXPECT_EQ(str(vectortext({0, 0, 3})), "<0, 0, 3>");
  EXPECT_EQ(str(vectortext({1.5, -2, 0.25})), "<1.5, -2, 0.25>");
  EXPECT_EQ(str(hypertext({1, 0, 0, 4})), "<1, 0, 0, 4>");
  EXPECT_EQ(str(hypertext({1, 0, 3, 0})), "<1, 0, 3>");
  EXPECT_EQ(str(hypertext({7, 0, 0, 0})), "7");
  const int64_t n[] = {4, 5, 0};
  EXPECT_EQ(str(natlisttext(n, false)), "<4, 5>");
}

TEST_F(Values, FullVectorForm) {
  EXPECT_EQ(str(fullvectortext({5, 0, 0})), "<5, 0, 0>");
  EXPECT_EQ(str(fullhypertext({0, 0, 0, 0})), "<0, 0, 0, 0>");
  const double v[] = {1, 2.5, 0};
  EXPECT_EQ(str(reallisttext(v, true, 2)), "<1.00, 2.50, 0.00>");
  const int64_t n[] = {4, 0, 0};
  EXPECT_EQ(str(natlisttext(n, true)), "<4, 0, 0>");
  const std::array<thyper, 4> identity{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
  EXPECT_EQ(str(matrixtext(identity)), "<<1, 0, 0, 0>, <0, 1, 0, 0>, <0, 0, 1, 0>, <0, 0, 0, 1>>");
}

TEST_F(Values, VectorFormsWithDecimalComma) {
  numbersettings.decimal = false;
  EXPECT_EQ(str(vectortext({1.5, 2, 0})), "<1,5; 2>");
  EXPECT_EQ(str(fullvectortext({1, 0, 0})), "<1; 0; 0>");
}

TEST_F(Values, SizeText) {
  EXPECT_EQ(str(sizetext(999)), "999");
  EXPECT_EQ(str(sizetext(1500)), "1.5 k");
  EXPECT_EQ(str(sizetext(2000000)), "2 M");
  EXPECT_EQ(str(sizetext(3000000000)), "3 G");
  EXPECT_EQ(str(sizetext(4200000000000)), "4.2 T");
  EXPECT_EQ(str(sizetext(5000000000000000)), "5 P");
}

// --- rounding (positions along an axis: spatial_test) -----------------------------------

TEST_F(Values, RoundingToNats) {
  EXPECT_EQ(roundnat(2.5), 2);
  EXPECT_EQ(roundnat(3.5), 4);
  EXPECT_EQ(roundnat(-2.5), -2);
  EXPECT_EQ(roundnat(1e19), maxnat);
  EXPECT_EQ(roundnat(-1e19), minnat);
  EXPECT_EQ(roundnat(std::nan("")), 0);
  EXPECT_EQ(truncnat(2.9), 2);
  EXPECT_EQ(truncnat(-2.9), -2);
  EXPECT_EQ(truncnat(HUGE_VAL), maxnat);
}

}  // namespace

// The long form through printf's "%.16f", with the noise digits and the trailing point cut:
// the model the quick paths of number printing must match.
std::string plainmodel(double x) {
  char buffer[512];
  std::snprintf(buffer, sizeof buffer, "%.16f", x);
  std::string s = buffer;
  const size_t point = s.find('.');
  if (2 * (point + 1) <= s.size()) {
    const size_t n = s.size();
    bool cut = true;
    if (s[n - 1] != '0') {
      if (s[n - 2] == '0') s.resize(n - 1);
      else if (s[n - 3] == '0') s.resize(n - 2);
      else cut = false;
    }
    while (cut && s.back() == '0') s.pop_back();
  }
  if (s.back() == '.') s.pop_back();
  if (s.size() > 1 && s[0] == '-' && s.find_first_not_of("0.", 1) == std::string::npos) s.erase(0, 1);
  return s;
}

TEST_F(Values, PlainPrintMatchesTheLongForm) {
  std::vector<double> xs = {0.0, -0.0, 1, -1, 7, 99999999999999, -99999999999999, 1e14, -1e14, 123456789012345,
                            1e15, 0.5, 1.0 / 3, -2.0 / 3, 1e-7, 1.1, 1e300, -1e-300, 4503599627370497.0,
                            -1e-20, -2.75, 999999999999999};
  for (int i = 1; i <= 2000; ++i) xs.push_back(static_cast<double>(i * i) / 7.0 - 1000);
  for (const double x : xs) EXPECT_EQ(plainrealtext(x), plainmodel(x)) << x;
}
