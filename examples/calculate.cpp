// Computes its arguments, one expression each, and shows where one is wrong:
//
//   calculate "sqrt(3*3 + 4*4)" "2*(3+4"
#include <cstdio>

#include <zrclb/zrclb.hpp>

int main(int argc, char **argv) {
    CZrCalculator calculator;
    int faults = 0;
    for (int i = 1; i < argc; ++i) {
        double value = 0;
        if (calculator.Calculate(argv[i], &value)) {
            std::printf("%s = %.15g\n", argv[i], value);
            continue;
        }
        const CZrCalculatorError &error = calculator.GetLastError();
        char message[64];
        error.GetMessageString(message, sizeof message);
        std::printf("%s\n%*s^ %s\n", argv[i], static_cast<int>(error.GetErrorColumn()), "", message);
        ++faults;
    }
    return faults;
}
