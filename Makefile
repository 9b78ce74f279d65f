# The front door. Everything that takes more than a line stands in tools/.

.PHONY: build setup demo test test-checked soak lint fuzz faults coverage bench clean help

build: setup  ## the programs and libraries, into build/bin
	tools/build.sh release desktop32
	tools/check_products.sh

setup:  ## the packages, Wine and its prefix that the rest needs (Debian)
	tools/setup.sh

demo: build  ## the agent at work on a sample store
	tools/demo.sh

test: setup  ## all tests, under Wine and natively with the sanitizers
	tools/test.sh

test-checked: setup  ## the tests under Wine with traps for undefined behaviour and the checked standard library
	tools/test.sh checked

soak: setup  ## the agent worn out: many rounds, Stop at any moment, eight clients at once (an hour)
	tools/soak.sh

lint: setup  ## the format, cppcheck, clang-tidy and the rules between the rooms
	tools/lint.sh

fuzz: setup  ## each fuzz target for a minute, or for SECONDS=...
	tools/fuzz.sh $(or $(SECONDS),60)

faults: setup  ## every call of every operation failed in turn, or held, and the table of docs/testing.md
	tools/faults.sh

coverage: setup  ## which lines of the pure ring its native tests reach, and the table of docs/testing.md
	tools/coverage.sh

bench: setup  ## what a read costs, beside its floor, and the tables of docs/performance.md
	tools/bench.sh

clean:  ## removes what was built, not the downloaded Wine and its prefix
	rm -rf build/bin build/release build/debug build/desktop32 build/sanitize build/fuzz build/coverage build/checked build/demo build/lint build/bench

help:  ## this list
	@awk -F ':.*## ' '/^[a-z-]+:.*## / { printf "make %-12s %s\n", $$1, $$2 }' Makefile
