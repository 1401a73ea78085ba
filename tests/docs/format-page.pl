# format-page.pl PAGE - writes the rows that the test of the page asks for into its tables, when the compiler, the
# foldings or what the example is compiled from have changed:
#
#   build/release/bin/test_docs --gtest_filter='*WhatItMeans' | perl tests/docs/format-page.pl docs/format.md
use strict;
use warnings;
use utf8;
use open qw(:std :encoding(UTF-8));

# What the first row of each table means.
my @begins = (qr/the mark `QEADRS`/, qr/node 0: prefecture/, qr/entry 0: code/, qr/node \d+: [^;]*$/, qr/0x000: /,
    qr/word 0: the mark `QETX`/, qr/slots? 0/, qr/city 0,/);
my $page = shift // die "format-page.pl PAGE\n";
my @table = ([]);
my $asked = 0;
while (my $line = <STDIN>) {
    $asked = 1 if $line =~ /the page should say:/;
    next unless $asked && $line =~ /^\| 0x/;
    my $meaning = (split / \| /, $line)[2] =~ s/ \|\n//r;
    push @table, [] if @{$table[-1]} && @table < @begins && $meaning =~ /^$begins[@table]/;
    push @{$table[-1]}, $line;
}
die "the test asks for no rows: the page is as it should be\n" unless $asked;
die "tables: " . @table . " instead of " . @begins . "\n" if @table != @begins;
open my $in, '<', $page or die "$page: $!\n";
my @line = <$in>;
close $in;
my ($out, $row, $example) = ('', 0, 0);
for my $line (@line) {
    $example = $line eq "## A whole dictionary, byte by byte\n" if $line =~ /^## /;
    if (!$example || $line !~ /^\| 0x/) { $row = 0 }
    elsif (!$row++) { $out .= join '', @{shift @table // die "more tables on the page\n"} }
    $out .= $line unless $row;
}
die "fewer tables on the page\n" if @table;
open my $file, '>', $page or die "$page: $!\n";
print $file $out;
