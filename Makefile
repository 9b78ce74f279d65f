# The front door. Everything that takes more than a line stands in tools/.

.PHONY: build setup demo test lint fuzz faults clean help

build: setup  ## the programs and libraries, into build/bin
	tools/build.sh release desktop32
	tools/check_products.sh

setup:  ## the packages, Wine and its prefix that the rest needs (Debian)
	tools/setup.sh

demo: build  ## the agent at work on a sample store
	tools/demo.sh

test: setup  ## all tests, under Wine and natively with the sanitizers
	tools/test.sh

lint: setup  ## the format, cppcheck, clang-tidy and the rules between the rooms
	tools/lint.sh

fuzz: setup  ## each fuzz target for a minute
	tools/fuzz.sh 60

faults: setup  ## every call of every operation failed in turn, and the table of docs/testing.md
	tools/faults.sh

clean:  ## removes what was built, not the downloaded Wine and its prefix
	rm -rf build/bin build/release build/debug build/desktop32 build/sanitize build/fuzz build/demo build/lint

help:  ## this list
	@awk -F ':.*## ' '/^[a-z]+:.*## / { printf "make %-6s %s\n", $$1, $$2 }' Makefile
