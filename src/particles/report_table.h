// The frame of exports that report what an image shows in a table of the caller's.
#pragma once

#include "core/handles.h"
#include "orlune_ptk.h"

namespace zel {

// kernel(vector, &count) sizes the vector of reports and counts them; on failure the count is 0.
template <class Report, class Kernel>
int32_t ReportsExport(const char* name, Report** reports, int32_t* nbReports,
                      const Kernel& kernel) {
  int32_t count = 0;
  if (!reports) return ZEL_ProcessError(name, STATUS_NULL_POINTER);
  ScopedWrap table;  // the caller's block, whatever its size: no report of it is read
  Status status = table.Create(*reports, sizeof(Report), 0, 0, 1);
  if (status == STATUS_OK) {
    status = kernel(table.handle(), &count);
    *reports = static_cast<Report*>(table.Release());
  }
  if (nbReports) *nbReports = count;
  return ZEL_ProcessError(name, status);
}

using ParticleKernel = Status (*)(ImageRef image, bool connectivity8, Handle reports,
                                  int32_t* nbReports);

template <class Report>
int32_t ParticleExport(const char* name, ParticleKernel kernel, ImageRef image,
                       uint16_t connectivity8, Report** reports, int32_t* nbReports) {
  return ReportsExport(name, reports, nbReports, [&](Handle table, int32_t* count) {
    return kernel(image, connectivity8 != 0, table, count);
  });
}

}  // namespace zel
