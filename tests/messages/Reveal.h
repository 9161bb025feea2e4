#pragma once

/// Names private members: access is not checked in an explicit instantiation.
///
///     struct Dispose { friend constexpr auto revealed(Dispose); };
///     template struct Reveal<&Class::dispose, Dispose>;
///     (object.*revealed(Dispose()))();
template<auto Member, typename Name>
struct Reveal {
    friend constexpr auto revealed(Name) { return Member; }
};
