// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The kernel's functions, and the proof that our records are laid out as its own.

#include <libproc.h>
#include <mach/mach.h>
#include <mach/mach_time.h>
#include <sys/resource.h>
#include <sys/sysctl.h>

#include "platform/macos/readers/system_functions.hpp"

namespace tarn::macos {

namespace {

static_assert(sizeof(ProcessRecord) == sizeof(proc_bsdinfo) &&
              sizeof(ProcessRecord) == PROC_PIDTBSDINFO_SIZE);
static_assert(offsetof(ProcessRecord, pid) == offsetof(proc_bsdinfo, pbi_pid));
static_assert(offsetof(ProcessRecord, ppid) == offsetof(proc_bsdinfo, pbi_ppid));
static_assert(offsetof(ProcessRecord, uid) == offsetof(proc_bsdinfo, pbi_uid));
static_assert(offsetof(ProcessRecord, startSeconds) == offsetof(proc_bsdinfo, pbi_start_tvsec));

static_assert(sizeof(UsageRecord) == sizeof(rusage_info_v6));
static_assert(offsetof(UsageRecord, userTime) == offsetof(rusage_info_v6, ri_user_time));
static_assert(offsetof(UsageRecord, systemTime) == offsetof(rusage_info_v6, ri_system_time));
static_assert(offsetof(UsageRecord, physicalFootprint) == offsetof(rusage_info_v6, ri_phys_footprint));

static_assert(sizeof(SwapRecord) == sizeof(xsw_usage));
static_assert(offsetof(SwapRecord, used) == offsetof(xsw_usage, xsu_used));

// The system's record grows from version to version: ours has to hold what all of them have.
static_assert(sizeof(MemoryRecord) / sizeof(integer_t) >= HOST_VM_INFO64_REV0_COUNT);
static_assert(offsetof(MemoryRecord, wiredPages) == offsetof(vm_statistics64, wire_count));
static_assert(offsetof(MemoryRecord, compressorPages) == offsetof(vm_statistics64, compressor_page_count));
static_assert(offsetof(MemoryRecord, externalPages) == offsetof(vm_statistics64, external_page_count));

static_assert(sizeof(Timebase) == sizeof(mach_timebase_info_data_t));

// The flavours that the readers pass as numbers.
static_assert(HOST_VM_INFO64 == 4 && PROC_ALL_PIDS == 1 && PROC_PIDTBSDINFO == 3 && RUSAGE_INFO_V6 == 6);

int hostStatistics(int flavor, void* record, std::uint32_t* wordCount) {
  static const host_t host = mach_host_self();  // each call would take another right to the port
  return host_statistics64(host, flavor, static_cast<host_info64_t>(record), wordCount);
}

int timebaseInfo(Timebase* timebase) {
  mach_timebase_info_data_t info = {};
  const kern_return_t status = mach_timebase_info(&info);
  *timebase = {info.numer, info.denom};
  return status;
}

int pidUsage(int pid, int flavor, void* record) {
  return proc_pid_rusage(pid, flavor, static_cast<rusage_info_t*>(record));
}

}  // namespace

const SystemFunctions& systemFunctions() {
  static const SystemFunctions functions = {.sysctlByName = sysctlbyname,
                                            .hostStatistics = hostStatistics,
                                            .pageSize = vm_kernel_page_size,
                                            .timebaseInfo = timebaseInfo,
                                            .listPIDs = proc_listpids,
                                            .pidUsage = pidUsage,
                                            .pidPath = proc_pidpath,
                                            .pidInfo = proc_pidinfo};
  return functions;
}

}  // namespace tarn::macos
