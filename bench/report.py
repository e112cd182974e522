#!/usr/bin/env python3
"""One table of every benchmark figure against its floor, from the JSON files that the bench
programs wrote with --benchmark_out (one <program>.json per program in the given folder).

A floor is the same work done with raw parts only (OpenSSL, SQLite, zlib, libcurl, a mutex and
a deque, a thread and a condition variable; see bench/RawFloors.hpp), measured in the same run.
The ratio is ours / floor in time per operation: 1.0x is as fast as the floor, 2.0x takes twice
as long. PAIRS below is the one place that says which floor goes with which figure.

Usage: bench/report.py <folder of JSON results>
Only the Python standard library is used.
"""

import json
import math
import sys
from pathlib import Path

# (program, figure, floor or None, reason when None (one word), per)
#   per = "op":   time per benchmark iteration (real time)
#   per = "item": time per processed item (1 / items_per_second), for batched benchmarks
PAIRS = [
    ("core", "BM_StartUpToReady_FreshDirectory/real_time", None, "composite", "op"),
    ("core", "BM_StartUpToReady_WarmDirectory/real_time", None, "composite", "op"),
    ("core", "BM_InitializeSdkCall", "BM_Floor_InitializeSdkHandOff", "", "op"),
    ("core", "BM_State", None, "composite", "op"),
    ("crypto", "BM_Aes256Encrypt16_Library", "BM_Floor_Aes256Encrypt16", "", "op"),
    ("crypto", "BM_Aes256Decrypt32_Library", "BM_Floor_Aes256Decrypt32", "", "op"),
    ("crypto", "BM_GzipDeflate1KiB", "BM_Floor_ZlibGzip1KiB", "", "op"),
    ("logging", "BM_DisabledLogLine", "BM_Floor_AtomicGateTest", "", "op"),
    ("logging", "BM_FilteredOutCategory", "BM_Floor_AtomicGateTest", "", "op"),
    ("logging", "BM_EnabledLogLineToNullSink", "BM_Floor_BuildLineToSinkUnderMutex", "", "op"),
    ("messaging", "BM_MakeUuidString", "BM_Floor_RandPoolUuid", "", "op"),
    ("messaging", "BM_CurrentTimestamp", "BM_Floor_CachedStrftimeTimestamp", "", "op"),
    ("messaging", "BM_CustomEventCreate", None, "validation", "op"),
    ("messaging", "BM_MessageMakeFrom", None, "model", "op"),
    ("messaging", "BM_Publish_CallerCost", "BM_Floor_Publish_CallerCost", "", "op"),
    ("messaging", "BM_Publish_EndToEnd/1000/real_time", "BM_Floor_Publish_EndToEnd/1000/real_time",
     "", "item"),
    ("messaging", "BM_PublishToTwoSubscribers", "BM_Floor_PublishToTwoSubscribers", "", "op"),
    ("network", "BM_TransportKeepAlive/real_time", "BM_RawCurlKeepAlive/real_time", "", "op"),
    ("network", "BM_ManagerExecuteSync/0/real_time", "BM_RawCurlKeepAlive/real_time", "", "op"),
    ("network", "BM_ManagerExecuteSync/1/real_time", "BM_RawCurlKeepAlive/real_time", "", "op"),
    ("network", "BM_IsBlockedByRetryAfterNoDeadlines/0", "BM_Floor_IsBlockedNoDeadlines/0", "",
     "op"),
    ("network", "BM_IsBlockedByRetryAfterNoDeadlines/1", "BM_Floor_IsBlockedNoDeadlines/1", "",
     "op"),
    ("platform", "BM_DefaultsSetString", "BM_Floor_DefaultsSetString", "", "op"),
    ("platform", "BM_DefaultsStringFor", "BM_Floor_DefaultsStringFor", "", "op"),
    ("platform", "BM_MemoryDefaultsSetString", "BM_Floor_MutexMapSetString", "", "op"),
    ("platform", "BM_KeychainUpdateItem", "BM_Floor_KeychainUpdateItem", "", "op"),
    ("platform", "BM_KeychainCopyMatching", "BM_Floor_KeychainCopyMatching", "", "op"),
    ("runtime", "BM_DispatchQueueThroughput/real_time", "BM_Floor_MutexQueueThroughput/real_time",
     "", "item"),
    ("runtime", "BM_DispatchQueueRoundTrip/real_time", "BM_Floor_MutexQueueRoundTrip/real_time",
     "", "op"),
    ("runtime", "BM_DispatchQueueSyncIdle", "BM_Floor_MutexRunClosure", "", "op"),
    ("runtime", "BM_OperationQueueSerialAddAndRun/real_time",
     "BM_Floor_MutexQueueSerialAddAndRun/real_time", "", "item"),
    ("storage", "BM_SecurePrefsSetString", "BM_Floor_SecurePrefsSetString", "", "op"),
    ("storage", "BM_SecurePrefsStringFor", "BM_Floor_SecurePrefsStringFor", "", "op"),
    ("storage", "BM_EncryptionManagerEncrypt20", "BM_Floor_Utf16Aes256Encrypt20", "", "op"),
    ("storage", "BM_EncryptionManagerDecrypt20", "BM_Floor_Aes256DecryptUtf16_20", "", "op"),
    ("storage", "BM_KeyEncryptData42Bytes", "BM_Floor_Aes256Cbc42Bytes", "", "op"),
]

# Resident memory, from counters in KiB: (program, benchmark, counter, host counter, goal in
# MiB). Shown in a table of their own; the floor is the host process before the SDK started.
MEMORY = [
    ("idle", "BM_IdleResidentMemory_BothModules/iterations:1", "rss_added_KiB", "rss_host_KiB",
     5.0),
    ("idle", "BM_IdleResidentMemory_BothModules/iterations:1", "private_dirty_added_KiB",
     "private_dirty_host_KiB", 5.0),
    ("idle", "BM_IdleResidentMemory_BothModules/iterations:1", "pss_added_KiB", "pss_host_KiB",
     5.0),
]

NS_PER = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def load(folder):
    """{program: {benchmark name: entry}} from vorn_<program>_bench.json files."""
    results = {}
    for path in sorted(Path(folder).glob("vorn_*_bench.json")):
        program = path.stem[len("vorn_"):-len("_bench")]
        try:
            data = json.loads(path.read_text())
        except (OSError, ValueError) as error:
            print(f"warning: {path}: {error}", file=sys.stderr)
            continue
        entries = {}
        for entry in data.get("benchmarks", []):
            if entry.get("run_type", "iteration") == "iteration":
                entries[entry["name"]] = entry
        results[program] = entries
    return results


def nanoseconds(entry, per):
    """Time per operation or per item in ns; None when the run failed or has no figure."""
    if entry is None or entry.get("error_occurred"):
        return None
    if per == "item":
        rate = entry.get("items_per_second")
        return 1e9 / rate if rate else None
    return entry["real_time"] * NS_PER[entry.get("time_unit", "ns")]


def shown(entry, ns, unit):
    """The figure in `unit`, or why there is none."""
    if ns is not None:
        return f"{ns / NS_PER[unit]:.3g}"
    return "missing" if entry is None else "failed"


def unit_for(*values):
    known = [v for v in values if v is not None]
    largest = max(known) if known else 0.0
    for unit in ("ns", "us", "ms"):
        if largest < 1000 * NS_PER[unit]:
            return unit
    return "s"


def mib(entry, counter):
    """The counter (KiB) in MiB, or None when the run failed or has no such counter."""
    if entry is None or entry.get("error_occurred") or counter not in entry:
        return None
    return entry[counter] / 1024


def memory_table(results, used):
    """Prints the resident memory figures; answers how many are missing or over their goal."""
    rows = []
    bad = 0
    for program, figure, counter, host_counter, goal in MEMORY:
        used.add((program, figure))
        entry = results.get(program, {}).get(figure)
        added, host = mib(entry, counter), mib(entry, host_counter)
        verdict = "missing" if added is None else ("ok" if added <= goal else "over")
        bad += verdict != "ok"
        rows.append((f"{program}: {counter}", "?" if added is None else f"{added:.2f}",
                     "?" if host is None else f"{host:.2f}", f"{goal:g}", verdict))
    header = ("figure", "added MiB", "host MiB", "goal MiB", "")
    widths = [max(len(str(row[i])) for row in rows + [header]) for i in range(len(header))]
    line = "  ".join(("{:<%d}" if i == 0 else "{:>%d}") % w for i, w in enumerate(widths))
    print("\nResident memory the SDK adds over its host (started with both modules, idle):")
    print(line.format(*header))
    print("  ".join("-" * w for w in widths))
    for row in rows:
        print(line.format(*row))
    return bad


def main(argv):
    if len(argv) != 2:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    results = load(argv[1])
    if not results:
        print(f"no vorn_*_bench.json in {argv[1]}", file=sys.stderr)
        return 1

    rows = []
    used = set()
    missing = 0
    for program, figure, floor, reason, per in PAIRS:
        entries = results.get(program, {})
        ours_entry = entries.get(figure)
        used.add((program, figure))
        ours = nanoseconds(ours_entry, per)
        if ours is None:
            missing += 1
        if floor is None:
            unit = unit_for(ours)
            rows.append((f"{program}: {figure}", shown(ours_entry, ours, unit), "—", reason,
                         f"{unit}/{per}"))
            continue
        used.add((program, floor))
        floor_entry = entries.get(floor)
        base = nanoseconds(floor_entry, per)
        if base is None:
            missing += 1
        unit = unit_for(ours, base)
        ratio = f"{ours / base:.2f}x" if ours is not None and base else "?"
        rows.append((f"{program}: {figure}", shown(ours_entry, ours, unit),
                     shown(floor_entry, base, unit), ratio, f"{unit}/{per}"))

    header = ("figure", "ours", "floor", "ours/floor", "unit")
    widths = [max(len(str(row[i])) for row in rows + [header]) for i in range(len(header))]
    line = "  ".join(("{:<%d}" if i == 0 else "{:>%d}") % w for i, w in enumerate(widths))
    print()
    print("Every figure against its floor (same run; ratio = ours / floor in time, "
          "1.0x = as fast as the floor, higher = slower):")
    print(line.format(*header))
    print("  ".join("-" * w for w in widths))
    for row in rows:
        print(line.format(*row))

    ratios = [float(r[3][:-1]) for r in rows if r[3].endswith("x")]
    if ratios:
        geo = math.exp(sum(math.log(r) for r in ratios) / len(ratios))
        print(f"\n{len(ratios)} paired figures, geometric mean ours/floor {geo:.2f}x; "
              f"{sum(1 for r in rows if r[2] == '—')} without a floor.")

    missing += memory_table(results, used)

    unpaired = sorted(f"{p}: {name}" for p, entries in results.items() for name in entries
                      if (p, name) not in used)
    if unpaired:
        print("\nnot in the table (add them to PAIRS in bench/report.py):")
        for name in unpaired:
            print("  " + name)
    if missing:
        print(f"\n{missing} benchmark result(s) missing, failed or over their goal.")
    return 1 if unpaired or missing else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
