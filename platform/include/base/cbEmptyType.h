#pragma once

// The payload of a broadcast that carries no data.
struct CbEmptyType {};
