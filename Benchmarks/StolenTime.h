#pragma once

namespace orvane {

/// How much of the processors' working time a virtual machine's host has given to others since this
/// was made (Linux's "steal"): what is measured meanwhile is slower by as much, and what runs on
/// all processors by more. 0 on a machine of its own.
class StolenTime {
public:
    StolenTime();
    /// 0 .. 1, of the time in which processors had work.
    double share() const;
    /// A line under a table.
    void print() const;

private:
    struct Ticks {
        double working = 0; ///< stolen ones included
        double stolen = 0;
    };
    static Ticks now();

    Ticks m_start;
};

} // namespace orvane
