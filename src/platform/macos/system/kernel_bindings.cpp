// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The functions of the kernel and of libdispatch. Checks that the records and constants of the readers match
// the system's headers.

#include <dispatch/dispatch.h>
#include <libproc.h>
#include <mach/mach.h>
#include <mach/mach_time.h>
#include <sys/resource.h>
#include <sys/sysctl.h>

#include "platform/macos/system/mac_system.hpp"

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

// vm_statistics64 grows from version to version; HOST_VM_INFO64_REV0_COUNT is the size of the first one.
static_assert(sizeof(MemoryRecord) / sizeof(integer_t) >= HOST_VM_INFO64_REV0_COUNT);
static_assert(offsetof(MemoryRecord, wiredPages) == offsetof(vm_statistics64, wire_count));
static_assert(offsetof(MemoryRecord, compressorPages) == offsetof(vm_statistics64, compressor_page_count));
static_assert(offsetof(MemoryRecord, externalPages) == offsetof(vm_statistics64, external_page_count));

static_assert(sizeof(Timebase) == sizeof(mach_timebase_info_data_t));

// The constants of the readers.
static_assert(HOST_VM_INFO64 == 4 && PROC_ALL_PIDS == 1 && PROC_PIDTBSDINFO == 3 && RUSAGE_INFO_V6 == 6);

int hostStatistics(int flavor, void* record, std::uint32_t* wordCount) {
  static const host_t host = mach_host_self();  // each call adds a send right to the port
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

dispatch_queue_t queueOf(void* queue) {
  return static_cast<dispatch_queue_t>(queue);
}

dispatch_source_t sourceOf(void* source) {
  return static_cast<dispatch_source_t>(source);
}

void* createQueue(const char* label) {
  return dispatch_queue_create(
      label, dispatch_queue_attr_make_with_qos_class(DISPATCH_QUEUE_SERIAL, QOS_CLASS_UTILITY, 0));
}

void* createPressureSource(unsigned long levels, void* queue) {
  return dispatch_source_create(DISPATCH_SOURCE_TYPE_MEMORYPRESSURE, 0, levels, queueOf(queue));
}

void setHandler(void* source, void* context, void (*handler)(void*)) {
  dispatch_set_context(sourceOf(source), context);
  dispatch_source_set_event_handler_f(sourceOf(source), handler);
}

// The levels of DispatchPressureSource.
static_assert((DISPATCH_MEMORYPRESSURE_NORMAL | DISPATCH_MEMORYPRESSURE_WARN |
               DISPATCH_MEMORYPRESSURE_CRITICAL) == 7);
static_assert(DISPATCH_MEMORYPRESSURE_WARN == 2 && DISPATCH_MEMORYPRESSURE_CRITICAL == 4);

}  // namespace

const KernelFunctions& kernelFunctions() {
  static const KernelFunctions functions = {.sysctlByName = sysctlbyname,
                                            .hostStatistics = hostStatistics,
                                            .pageSize = vm_kernel_page_size,
                                            .timebaseInfo = timebaseInfo,
                                            .listPIDs = proc_listpids,
                                            .pidUsage = pidUsage,
                                            .pidPath = proc_pidpath,
                                            .pidInfo = proc_pidinfo};
  return functions;
}

const DispatchFunctions& dispatchFunctions() {
  static const DispatchFunctions functions = {
      .createQueue = createQueue,
      .createPressureSource = createPressureSource,
      .setHandler = setHandler,
      .resume = [](void* source) { dispatch_resume(sourceOf(source)); },
      .pendingLevels = [](void* source) -> unsigned long {
        return dispatch_source_get_data(sourceOf(source));
      },
      .cancel = [](void* source) { dispatch_source_cancel(sourceOf(source)); },
      .waitFor = [](void* queue) { dispatch_sync_f(queueOf(queue), nullptr, [](void*) {}); },
      .release = [](void* object) { dispatch_release(static_cast<dispatch_object_t>(queueOf(object))); }};
  return functions;
}

}  // namespace tarn::macos
