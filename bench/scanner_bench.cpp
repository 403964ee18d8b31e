// 10 MB of C-like text, made up here, cut into tokens: the scanner through a getChar function beside flex and GScanner.
//
// Items are tokens, each row's own: all rows know names, keywords, numbers, strings, comments and composed relations. flex and
// GScanner read from memory; flex neither copies texts nor converts numbers there. FlexDelivered reads through getChar as well, copies
// and converts. The items of the rows GetChar... are characters.
#include <cstddef>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <glib.h>
#include <zrclb/scan.h>

#ifdef ZR_BENCH_FLEX
#include "scanner_lexer.h"
#endif

extern "C" long far_calls(int (*get_char)());

namespace {

constexpr std::size_t text_size = 10'000'000;
const char *keywords[] = {"char",   "const",  "double", "else", "for",   "if",   "int",
                          "return", "static", "struct", "void", "while", nullptr};

// Makes functions with declarations, assignments, calls, loops and comments out of 3000 names.
class TextMaker {
public:
    std::string Make() {
        for (int i = 0; i < 3000; ++i)
            names_.push_back(NewName());
        while (text_.size() < text_size)
            AddFunction();
        return text_;
    }

private:
    int Number(int from, int to) { return from + static_cast<int>(random_() % static_cast<unsigned>(to - from + 1)); }
    bool Chance(int percent) { return Number(0, 99) < percent; }
    const std::string &Name() { return names_[random_() % names_.size()]; }
    const char *Type() {
        constexpr const char *types[] = {"int", "double", "char"};
        return types[random_() % std::size(types)];
    }

    std::string NewName() {
        constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz_";
        std::string name(1, letters[Number(0, 25)]);
        for (int length = Number(2, 12); static_cast<int>(name.size()) < length;)
            name += letters[Number(0, 26)];
        return name;
    }

    std::string Value() {
        char text[32];
        if (Chance(60))
            std::snprintf(text, sizeof text, "%d", Number(0, 9999));
        else if (Chance(70))
            std::snprintf(text, sizeof text, "%.4f", Number(0, 9999999) / 1e4);
        else
            std::snprintf(text, sizeof text, "%de-%d", Number(1, 9), Number(1, 12));
        return text;
    }

    std::string Operand() {
        const int choice = Number(0, 99);
        if (choice < 55)
            return Name();
        if (choice < 85)
            return Value();
        if (choice < 95)
            return Name() + "(" + Name() + ", " + Value() + ")";
        return "\"" + Name() + " " + Name() + " " + Name() + "\"";
    }

    std::string Sum() {
        constexpr const char *operators[] = {"+", "-", "*", "/", "<", ">", "==", "&&", "||", "<=", ">=", "!="};
        std::string sum = Operand();
        for (int more = Number(0, 3); more > 0; --more)
            sum += std::string(" ") + operators[random_() % std::size(operators)] + " " + Operand();
        return sum;
    }

    void AddStatement() {
        const int choice = Number(0, 99);
        if (choice < 20)
            text_ += std::string("  ") + Type() + " " + Name() + " = " + Sum() + ";\n";
        else if (choice < 60)
            text_ += "  " + Name() + " = " + Sum() + ";\n";
        else if (choice < 80)
            text_ += "  if (" + Sum() + ") " + Name() + "(" + Sum() + ");\n";
        else if (choice < 90)
            text_ += "  for (i = 0; i < " + Value() + "; i++) " + Name() + "[i] += " + Sum() + ";  // " + Name() + "\n";
        else
            text_ += "  " + Name() + "->" + Name() + " = '" + Name()[0] + "';\n";
    }

    void AddFunction() {
        if (Chance(50))
            text_ += "/* " + Name() + " " + Name() + " " + Name() + " " + Name() + " " + Name() + " */\n";
        text_ +=
            std::string(Type()) + " " + Name() + "(" + Type() + " " + Name() + ", " + Type() + " " + Name() + ")\n{\n";
        for (int statements = Number(3, 15); statements > 0; --statements)
            AddStatement();
        text_ += "  return " + Sum() + ";\n}\n\n";
    }

    std::mt19937 random_{4242};
    std::vector<std::string> names_;
    std::string text_;
};

std::string &Text() {
    static std::string text = TextMaker().Make();
    return text;
}

const char *next;

int GetChar() {
    return static_cast<unsigned char>(*next++);
}

void SetRates(benchmark::State &state, long items) {
    state.SetItemsProcessed(state.iterations() * items);
    state.SetBytesProcessed(state.iterations() * static_cast<long>(text_size));
    state.counters["ns_per_item"] = benchmark::Counter(static_cast<double>(state.iterations() * items) * 1e-9,
                                                       benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["items"] = static_cast<double>(items);
}

void Scanner(benchmark::State &state) {
    next = Text().c_str();
    constexpr zr_long options = SCAN_BLOCK_COMMENT | SCAN_LINE_COMMENT | SCAN_COMPOSE_RELATIONS;
    CZrScanner *scanner = scan_open(GetChar, options, keywords);
    zr_long kind = 0;
    ZrScanToken token;
    long items = 0;
    for (auto _ : state) {
        next = Text().c_str();
        scan_reset(scanner);
        items = 0;
        while (scan_token(scanner, &kind, &token), kind != SCAN_KIND_END)
            ++items;
    }
    scan_close(scanner);
    SetRates(state, items);
}

// What the calls of the source cost by themselves, from within the program and from a library.
void GetCharNear(benchmark::State &state) {
    int (*volatile source)() = GetChar;
    long items = 0;
    for (auto _ : state) {
        next = Text().c_str();
        int (*const get_char)() = source;
        items = 0;
        while (get_char() != 0)
            ++items;
    }
    SetRates(state, items);
}

void GetCharFar(benchmark::State &state) {
    long items = 0;
    for (auto _ : state) {
        next = Text().c_str();
        items = far_calls(GetChar);
    }
    SetRates(state, items);
}

#ifdef ZR_BENCH_FLEX
void Flex(benchmark::State &state) {
    std::string text = Text() + std::string(2, '\0');
    long items = 0;
    for (auto _ : state)
        items = flex_tokens(text.data(), text.size() - 2);
    SetRates(state, items);
}

void FlexDelivered(benchmark::State &state) {
    static flex_token token;
    long items = 0;
    for (auto _ : state) {
        next = Text().c_str();
        items = flex_tokens_delivered(GetChar, &token);
    }
    SetRates(state, items);
}
#endif

void Glib(benchmark::State &state) {
    GScanner *scanner = g_scanner_new(nullptr);
    scanner->config->case_sensitive = 1;
    scanner->config->scan_identifier_1char = 1;
    scanner->config->scan_symbols = 1;
    scanner->config->char_2_token = 1;
    scanner->config->scan_octal = 0;
    scanner->config->skip_comment_multi = 1;
    scanner->config->cpair_comment_single = const_cast<char *>("#\n");
    scanner->msg_handler = [](GScanner *, gchar *, gboolean) {};
    for (int i = 0; keywords[i] != nullptr; ++i)
        g_scanner_scope_add_symbol(scanner, 0, keywords[i], const_cast<char **>(keywords + i));
    long items = 0;
    for (auto _ : state) {
        g_scanner_input_text(scanner, Text().data(), static_cast<guint>(Text().size()));
        items = 0;
        while (g_scanner_get_next_token(scanner) != G_TOKEN_EOF)
            ++items;
    }
    g_scanner_destroy(scanner);
    SetRates(state, items);
}

BENCHMARK(Scanner)->Unit(benchmark::kMillisecond);
#ifdef ZR_BENCH_FLEX
BENCHMARK(Flex)->Unit(benchmark::kMillisecond);
BENCHMARK(FlexDelivered)->Unit(benchmark::kMillisecond);
#endif
BENCHMARK(Glib)->Unit(benchmark::kMillisecond);
BENCHMARK(GetCharNear)->Unit(benchmark::kMillisecond);
BENCHMARK(GetCharFar)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
