// The calculator beside muParser: twelve expressions, each read and computed anew every time.
//
// muParser takes angles in radians; its work is of the same kind. The last lines print geometric means, and ratios to muParser.
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <muParser.h>
#include <zrclb/zrclb.hpp>

#include "shortest_times.h"

namespace {

struct Sample {
    const char *text;
    bool simple; // numbers, operators and functions of one argument only
};

constexpr Sample samples[] = {
    {"1+2*3", true},
    {"(1.5+2.25)*4-7/2", true},
    {"3.14159*2.5*2.5", true},
    {"sin(30)", true},
    {"min(3,7)+max(2,5)", false},
    {"-5+(8-3)*(12.75/(2+1))", true},
    {"sqrt(3*3+4*4)*2-abs(-7.5)", true},
    {"4<5?10:20", false},
    {"(2.5>1.25)*100+(3<=2)*50", false},
    {"sin(0.5)*cos(0.25)+sqrt(2)*exp(0.1)-log(2.5)", true},
    {"min(max(1,2),min(3.5,4))*((1+2)*(3+4)-(5-6)/(7+8))>9?sin(0.75):cos(0.75)", false},
    {"(1.25+2.5*sin(0.3))*(4.75-cos(0.6)/2)+sqrt(abs(3.5-12.25))*min(7.5,max(2.25,3.125))"
     "-(8.5>=4.25?exp(0.5)*1.75:log(2.5)+9.125)+((10.5-3.25)*(6.75+2.125)/(1.5+0.5))*(5<6?0.5:0.25)"
     "-max(sin(1.1),cos(1.1))*12",
     false},
};

[[noreturn]] void Fail(const char *text) {
    std::fprintf(stderr, "cannot compute %s\n", text);
    std::exit(1);
}

void Calculator(benchmark::State &state, const Sample &sample) {
    CZrCalculator calculator;
    double result = 0;
    if (!calculator.Calculate(sample.text, &result))
        Fail(sample.text);
    for (auto _ : state) {
        calculator.Calculate(sample.text, &result);
        benchmark::DoNotOptimize(result);
    }
}

void PlainFunction(benchmark::State &state, const Sample &sample) {
    double result = 0;
    char ok = 0;
    calc_expression(sample.text, &result, &ok);
    if (ok != 1)
        Fail(sample.text);
    for (auto _ : state) {
        calc_expression(sample.text, &result, &ok);
        benchmark::DoNotOptimize(result);
    }
}

void MuParser(benchmark::State &state, const Sample &sample) {
    mu::Parser parser;
    for (auto _ : state) {
        parser.SetExpr(sample.text);
        benchmark::DoNotOptimize(parser.Eval());
    }
}

class Summary : public bench::ShortestTimes {
public:
    // Geometric mean over the samples, or over the simple ones, in ns; 0 if a row is missing.
    double Mean(const char *who, bool simple_only) const {
        double logarithms = 0;
        int count = 0;
        for (std::size_t i = 0; i < std::size(samples); ++i) {
            if (simple_only && !samples[i].simple)
                continue;
            const std::optional<double> time = Time(Name(who, i));
            if (!time)
                return 0;
            logarithms += std::log(*time);
            ++count;
        }
        return std::exp(logarithms / count);
    }

    static std::string Name(const char *who, std::size_t sample) {
        return std::string(who) + (sample < 9 ? "_0" : "_") + std::to_string(sample + 1);
    }
};

using Work = void (*)(benchmark::State &, const Sample &);
constexpr struct {
    const char *name;
    Work work;
} rows[] = {{"Calculator", Calculator}, {"PlainFunction", PlainFunction}, {"MuParser", MuParser}};

} // namespace

int main(int argc, char **argv) {
    for (const auto &[name, work] : rows) {
        for (std::size_t i = 0; i < std::size(samples); ++i)
            benchmark::RegisterBenchmark(Summary::Name(name, i).c_str(), work, samples[i]);
    }
    benchmark::Initialize(&argc, argv);
    Summary summary;
    benchmark::RunSpecifiedBenchmarks(&summary);
    const double peer = summary.Mean("MuParser", false);
    const double simple_peer = summary.Mean("MuParser", true);
    for (const auto &[name, work] : rows)
        std::printf("%-14s all %8.1f ns (muParser x %.3f), simple ones %8.1f ns (muParser x %.3f)\n", name,
                    summary.Mean(name, false), summary.Mean(name, false) / peer, summary.Mean(name, true),
                    summary.Mean(name, true) / simple_peer);
}
