#pragma once

#include <QString>

#include <functional>

/// One line of a benchmark: what the product does against the least that the same result costs.
struct Comparison
{
    QString what;
    std::function<void()> product;
    std::function<void()> floor;
    double aim = 0;                    ///< largest ratio of product to floor that is good enough
    std::function<void()> before = {}; ///< makes room before each of them; not measured
};

/// Runs product and floor in turn, at least 15 times, and prints both medians and their ratio.
void compare(const Comparison &comparison, int runs = 15);
