#pragma once

#include <functional>
#include <list>
#include <string>
#include <vector>

// The machinery of the bench. A row sets one work of this library beside others that do the same:
//
//     bench.add("hash/murmur3", [](BenchRow& row) {
//         row.ours([=] { ... });
//         row.peer("plain", [=] { ... }, at_least(1.25));
//         row.agree("keys", [=] { return ...; });
//     });
//
// The sides of a row take turns in random order, in one process, on data that is warm. Times are of
// the processor, so that other programs disturb little, unless a row asks for those of the clock.

// What the measured number must reach.
struct BenchBar {
    enum Sense { SHOWN, AT_LEAST, AT_MOST };
    Sense sense = SHOWN;
    double limit = 0;

    bool is_held_by(double const& value) const {
        return sense == SHOWN || (sense == AT_LEAST ? value >= limit : value <= limit);
    }
};

inline BenchBar at_least(double const& limit) { return {BenchBar::AT_LEAST, limit}; }
inline BenchBar at_most(double const& limit) { return {BenchBar::AT_MOST, limit}; }
inline BenchBar shown() { return {}; }

// The median of several measurements and the quartiles around it.
struct BenchNumber {
    double low = 0;
    double median = 0;
    double high = 0;
};

using BenchWork = std::function<void()>;

struct BenchSide {
    std::string name;
    BenchWork work;
    double size = 0;      // of its input, in a row that tells growth
    BenchNumber seconds;  // of one call
};

struct BenchResult {
    std::string against;
    BenchNumber value;
    BenchBar bar;
};

class BenchRow {
  public:
    // Two ways to fill it. Either this library's work and that of others: a bar of `at_most` holds
    // our time over theirs, any other one their time over ours.
    void ours(BenchWork const& work) { add_side("ours", work); }
    void peer(std::string const& name, BenchWork const& work, BenchBar const& bar = {});
    // Or this library's work at growing sizes, with the exponent of growth between the last two.
    void at_size(double const& size, BenchWork const& work);
    void growth(BenchBar const& bar) { m_growth.push_back(bar); }

    // Numbers that are no times.
    void number(std::string const& what, double const& value, BenchBar const& bar = {});
    // Tells of a peer that was not found when the bench was built.
    void missing(std::string const& peer) { m_missing.push_back(peer); }
    // Asked after the measurement, of what the last calls left.
    void agree(std::string const& what, std::function<bool()> const& check);
    // What to know about the row; why the work of the two sides is not quite the same.
    void note(std::string const& text) { m_notes.push_back(text); }
    void use_clock_time() { m_is_clock_time = true; }

  private:
    friend class Bench;

    struct Peer {
        BenchSide const* side;
        BenchBar bar;
    };
    struct Check {
        std::string what;
        std::function<bool()> is_met;
    };

    BenchSide& add_side(std::string const& name, BenchWork const& work);

    std::string m_name;
    std::list<BenchSide> m_sides;
    std::vector<Peer> m_peers;
    std::vector<BenchBar> m_growth;
    std::vector<BenchResult> m_results;
    std::vector<Check> m_checks;
    std::vector<std::string> m_missing;
    std::vector<std::string> m_notes;
    bool m_is_clock_time = false;
};

// A row that has been measured.
struct BenchRecord {
    std::string name;
    std::vector<BenchSide> sides;  // without their work
    std::vector<BenchResult> results;
    std::vector<std::string> disagreements;
    std::vector<std::string> missing;
    std::vector<std::string> notes;
};

class Bench {
  public:
    // `make` fills the row when its turn has come; what it holds is freed before the next.
    void add(std::string const& name, std::function<void(BenchRow&)> const& make) {
        m_rows.push_back({name, make});
    }

    std::vector<std::string> get_names() const;
    // Measures one row. A short measurement repeats less often.
    BenchRecord run(std::string const& name, bool const& is_short) const;

  private:
    struct Row {
        std::string name;
        std::function<void(BenchRow&)> make;
    };
    std::vector<Row> m_rows;
};
