#pragma once

/// How the items of two points are joined. A are those of the first point, B those of the second.
enum _ConnectionInfoType : int {
    CONNECT_ANY = 1,            ///< in A or in B
    CONNECT_BOTH = 2,           ///< in A and in B
    CONNECT_FIRST_ONLY = 3,     ///< in A alone
    CONNECT_SECOND_ONLY = 4,    ///< in B alone
    CONNECT_ONE_ONLY = 5,       ///< in one of them alone
};
