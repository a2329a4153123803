#pragma once

// The baseline of the image benchmarks: a plain copy of an image's bytes,
// rows in parallel as the work it is compared with.

#include <pluginAPI/piImage.h>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>

#include <cstring>

inline void copyImage(const PiImage& in, PiImage& out) {
    const std::size_t rowBytes = 4 * static_cast<std::size_t>(in.getWidth()) * sizeof(float);
    tbb::parallel_for(tbb::blocked_range<int>(0, in.getHeight()),
                      [&](const tbb::blocked_range<int>& rows) {
                          for (int j = rows.begin(); j != rows.end(); ++j) {
                              std::memcpy(out.row(j), in.row(j), rowBytes);
                          }
                      });
}
