# Thin wrapper over the CMake presets.
.PHONY: all deps build test asan arm-test coverage demo clean

all: build

deps:
	@scripts/install-deps.sh

build: deps
	cmake --preset default
	cmake --build --preset default

test: build
	ctest --preset default

asan: deps
	cmake --preset asan
	cmake --build --preset asan
	ctest --preset asan

# Line coverage of src/ under the whole suite, per directory (needs gcovr).
coverage: deps
	cmake --preset coverage
	cmake --build --preset coverage
	find build/coverage -name '*.gcda' -delete
	ctest --preset coverage
	scripts/coverage-report.sh build/coverage

arm-test:
	@scripts/install-deps.sh --with-arm
	cmake --preset arm
	cmake --build --preset arm
	ctest --preset arm

# Only what the demo runs, the library and the tool: the test suites are
# for `make test`.
demo: deps
	cmake --preset default
	cmake --build --preset default --target smsutil
	scripts/demo.sh build/default/tools/smsutil/smsutil

# Every fuzz target for FUZZ_SECONDS seconds, one after another.
.PHONY: fuzz
FUZZ_SECONDS ?= 60
fuzz: deps
	cmake --preset fuzz
	cmake --build --preset fuzz
	fuzz/run.sh build/fuzz/fuzz $(FUZZ_SECONDS)

clean:
	rm -rf build

# Benchmarks with tracing on (log on a tmpfs) and compiled out; medians of
# repeated runs.  BENCH_ARGS=--benchmark_filter=parse_sms narrows the run.
BENCH_ARGS ?=
BENCH_REPETITIONS ?= 10
# Instructions per call of each entry point against bench/instruction_budget.txt
# (callgrind counts, so load does not matter); fails on any entry over its
# budget by more than 5 %.
.PHONY: perf-check
perf-check: deps
	cmake --preset bench
	cmake --build --preset bench --target smsutil_probe
	cmake --preset bench-notrace
	cmake --build --preset bench-notrace --target smsutil_probe
	bench/scripts/perf_check.sh bench/instruction_budget.txt \
		build/bench/bench/smsutil_probe build/bench-notrace/bench/smsutil_probe

# The library beside other XML parsers and an SMS decoder on the same
# inputs, in instructions per call; each peer is measured when its Debian
# development package is installed.
.PHONY: bench-peers
bench-peers: deps
	cmake --preset bench-notrace
	cmake --build --preset bench-notrace --target smsutil_peers
	bench/scripts/instructions_per_call.sh build/bench-notrace/bench/peers/smsutil_peers

.PHONY: bench
bench:
	cmake --preset bench
	cmake --build --preset bench
	cmake --preset bench-notrace
	cmake --build --preset bench-notrace
	build/bench/bench/smsutil_bench --benchmark_repetitions=$(BENCH_REPETITIONS) \
		--benchmark_report_aggregates_only=true $(BENCH_ARGS)
	build/bench-notrace/bench/smsutil_bench --benchmark_repetitions=$(BENCH_REPETITIONS) \
		--benchmark_report_aggregates_only=true $(BENCH_ARGS)
