#!/usr/bin/env python3
"""End-to-end tests: the real 64-bit kalvero4.exe under Wine, used as a person would.

  tests/e2e/run_e2e.py                        every scenario
  tests/e2e/run_e2e.py first_start accel      the scenarios whose names start so
  tests/e2e/run_e2e.py --keep-shots DIR ...   also write each scenario's pictures into DIR
  tests/e2e/run_e2e.py --list                 the scenarios and what each shows

Needs Xvfb, Wine (64-bit), xdotool and ImageMagick (tools/setup installs them) and the
windows64 build (kalvero4.exe and kalvero4-probe.exe). Exit status 0 when every scenario
passed, 1 when one failed, 2 when the environment (Xvfb, Wine, a tool) could not be brought
up: the suite never passes without having run.
"""

from __future__ import annotations

import argparse
import signal
import sys
import tempfile
import time
import traceback
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))

from harness import (Environment, EnvironmentFailure, ScenarioFailure,  # noqa: E402
                     StartFailure)
from scenarios import SCENARIOS, Run  # noqa: E402

SCENARIO_TIME_LIMIT = 150.0  # seconds; every wait of a scenario ends by then
START_FAILURES_TO_STOP = 2  # in a row: the program does not start, the rest would only wait


def select(names: list[str]):
    if not names:
        return list(SCENARIOS)
    chosen = []
    for name in names:
        found = [s for s in SCENARIOS if s.name == name] or [
            s for s in SCENARIOS if s.name.startswith(name)]
        if not found:
            raise SystemExit(f"run_e2e: no scenario named {name!r} (see --list)")
        chosen += [s for s in found if s not in chosen]
    return chosen


def failure_picture(run: Run, folder: Path) -> Path | None:
    """The whole desktop as it was when the scenario failed, if it can still be taken."""
    games = [g for g in run.games if g.process is not None]
    if not games:
        return None
    try:
        folder.mkdir(parents=True, exist_ok=True)
        path = folder / f"{run.name}-failure.png"
        games[-1].deadline = time.monotonic() + 30
        games[-1].screen().save_png(path)
        return path
    except Exception:  # the picture is a help, never a second failure
        return None


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("scenarios", nargs="*", help="names (or beginnings of names) to run")
    parser.add_argument("--keep-shots", type=Path, metavar="DIR",
                        help="write each scenario's pictures into DIR")
    parser.add_argument("--list", action="store_true", help="list the scenarios and stop")
    parser.add_argument("--build", type=Path, default=HERE.parent.parent / "build" / "windows64",
                        help="folder holding kalvero4.exe and kalvero4-probe.exe")
    parser.add_argument("--keep-temp", action="store_true",
                        help="keep the Wine prefix, working folders and logs")
    args = parser.parse_args()

    if args.list:
        for s in SCENARIOS:
            note = f"  [expected to fail: {s.expected_failure}]" if s.expected_failure else ""
            print(f"{s.name:28} {s.doc}{note}")
        return 0
    chosen = select(args.scenarios)
    # Stopped from outside (a CI time limit), the run still ends Wine and Xvfb on its way out.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))

    started = time.monotonic()
    env = Environment(args.build / "kalvero4.exe", args.build / "kalvero4-probe.exe",
                      keep_temp=args.keep_temp)
    failures_folder = args.keep_shots or Path(tempfile.gettempdir()) / "kalvero4-e2e-failures"
    failed, unexpected = [], []
    try:
        try:
            env.start()
        except EnvironmentFailure as error:
            print(f"e2e: FAILED: the test environment could not start: {error}", file=sys.stderr)
            return 2
        print(f"e2e: {len(chosen)} scenarios, working in {env.root}")
        start_failures = 0
        for s in chosen:
            if start_failures >= START_FAILURES_TO_STOP:
                failed.append(s.name)
                print(f"  FAIL  {s.name}: not run, the program does not start")
                continue
            t0 = time.monotonic()
            run = Run(env, s.name, t0 + SCENARIO_TIME_LIMIT, args.keep_shots)
            problem = None
            start_failures += 1  # until the scenario shows otherwise
            try:
                s.run(run)
                start_failures = 0
            except StartFailure as error:
                problem = f"the program did not start: {error}"
            except (ScenarioFailure, AssertionError) as error:
                problem = str(error)
                start_failures = 0
            except EnvironmentFailure as error:
                problem = f"environment: {error}"
            except Exception:  # a fault of the harness itself still fails the scenario
                problem = traceback.format_exc()
                start_failures = 0
            picture = failure_picture(run, failures_folder) if problem else None
            run.finish()
            took = time.monotonic() - t0
            if problem and s.expected_failure:
                print(f"  xfail {s.name} ({took:.1f} s): {s.expected_failure}")
            elif problem:
                failed.append(s.name)
                where = f" [screen: {picture}]" if picture else ""
                print(f"  FAIL  {s.name} ({took:.1f} s): {problem}{where}")
            elif s.expected_failure:
                unexpected.append(s.name)
                print(f"  XPASS {s.name} ({took:.1f} s): expected to fail "
                      f"({s.expected_failure}); remove the mark")
            else:
                print(f"  ok    {s.name} ({took:.1f} s)")
            sys.stdout.flush()
    finally:
        env.close()
    total = time.monotonic() - started
    if failed or unexpected:
        print(f"e2e: {len(failed)} failed, {len(unexpected)} passed unexpectedly, "
              f"in {total:.0f} s: {' '.join(failed + unexpected)}")
        return 1
    print(f"e2e: all {len(chosen)} scenarios passed in {total:.0f} s")
    if args.keep_shots:
        print(f"e2e: pictures in {args.keep_shots}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
