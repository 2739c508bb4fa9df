#pragma once

#include <benchmark/benchmark.h>

/// Hides a value from the optimizer, which would otherwise compute with it once and for all.
template <typename Value>
const Value& hidden(const Value& value)
{
    const Value* pointer = &value;
    benchmark::DoNotOptimize(pointer);
    return *pointer;
}

/// Keeps an answer from being thrown away unmade.
template <typename Value>
void use(Value&& value)
{
    benchmark::DoNotOptimize(value);
}
