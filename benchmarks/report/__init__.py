# SPDX-License-Identifier: Apache-2.0
"""Runs the benchmarks and reports them: goals.py and sweeps.py name the things that are compared."""
