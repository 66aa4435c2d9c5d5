// SPDX-License-Identifier: MIT
// What the sources that tests/mutate has rewritten call: each mutant is compiled into the program,
// and the environment says which one is on. A mutant is known by its number.
//
// None of this is constexpr: a mutant in a constant expression does not compile, and tests/mutate
// then tries it by a build of its own.
#pragma once

namespace mutants {

extern int g_on;                  // the mutant that is on, or -1
extern unsigned char* g_reached;  // a byte for each mutant, or null; 1 before main began, 2 after
extern unsigned char g_phase;

// Whether the mutant is on. It is called where the mutant is executed, and notes this.
inline bool On(int mutant) {
    if (g_reached != nullptr) g_reached[mutant] |= g_phase;
    return mutant == g_on;
}

template <class T>
T Number(int mutant, T value, T other) {
    return On(mutant) ? other : value;
}

// `more` and `less` are two mutants.
template <class T, class U>
T ByOne(int more, int less, T value, U one_more, T one_less) {
    if (On(more)) return static_cast<T>(one_more);
    return On(less) ? one_less : value;
}

template <class T>
bool Negated(int mutant, const T& value) {
    return static_cast<bool>(value) != On(mutant);
}

template <class T>
T& Stepped(int mutant, T& value) {
    if (On(mutant)) return --value;
    return ++value;
}

template <class T>
T SteppedAfter(int mutant, T& value) {
    return On(mutant) ? value-- : value++;
}

// `a + b` becomes `a + At(N) + b`, which has the precedence of the original.
struct At {
    explicit At(int number) : mutant(number) {}
    int mutant;
};

template <class T>
struct Left {
    const T& value;
    int mutant;
};

#define MUTANT_OPERATOR(before, after)                                           \
    template <class T>                                                           \
    Left<T> operator before(const T& value, At at) {                             \
        return {value, at.mutant};                                               \
    }                                                                            \
    template <class T, class U>                                                  \
    auto operator before(Left<T> left, const U& right) {                         \
        using Result = decltype(left.value before right);                        \
        if (On(left.mutant)) return static_cast<Result>(left.value after right); \
        return static_cast<Result>(left.value before right);                     \
    }

MUTANT_OPERATOR(<, <=)
MUTANT_OPERATOR(<=, <)
MUTANT_OPERATOR(>, >=)
MUTANT_OPERATOR(>=, >)
MUTANT_OPERATOR(==, !=)
MUTANT_OPERATOR(!=, ==)
MUTANT_OPERATOR(&, |)
MUTANT_OPERATOR(|, &)
MUTANT_OPERATOR(+, -)
MUTANT_OPERATOR(-, +)
MUTANT_OPERATOR(<<, >>)
MUTANT_OPERATOR(>>, <<)

// `a += b` becomes `a += At(N) += b`: from the right.
template <class U>
struct Right {
    const U& value;
    int mutant;
};

#define MUTANT_ASSIGNMENT(before, after)              \
    template <class U>                                \
    Right<U> operator before(At at, const U& value) { \
        return {value, at.mutant};                    \
    }                                                 \
    template <class T, class U>                       \
    T& operator before(T& place, Right<U> right) {    \
        if (On(right.mutant)) {                       \
            place after right.value;                  \
        } else {                                      \
            place before right.value;                 \
        }                                             \
        return place;                                 \
    }

MUTANT_ASSIGNMENT(+=, -=)
MUTANT_ASSIGNMENT(-=, +=)
MUTANT_ASSIGNMENT(|=, &=)
MUTANT_ASSIGNMENT(&=, |=)

}  // namespace mutants
