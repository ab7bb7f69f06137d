#!/usr/bin/env perl
# Compares the messages of Docs/Logging.md with those that the sources log: LoggingPage.pl ROOT
# A message is what stands in the source, with {} for each operand; the page writes {what it is} there. Messages stand
# under the heading of their source, in code spans of the second column, behind the level.
use strict;
use warnings;

my $root = shift // die "usage: LoggingPage.pl ROOT\n";
chdir $root or die "$root: $!\n";

my $string = qr/"(?:[^"\\]|\\.)*"/;
my $nested = qr/(\((?:[^()"']++|$string|'(?:[^'\\]|\\.)'|(?-1))*+\))/;
# Functions that are handed the text: the number of the argument, the level, and what they put behind it.
my %helpers = (Refuse => [1, 'ERROR', ''], Guarded => [1, 'ERROR', '{}'], duration => [0, 'INFO', '{}']);
# What those functions call the text.
my $handed = qr/^(?:message|label|m_label|text)$/;

sub slurp { local (@ARGV, $/) = @_; my $text = <>; return $text }

# The parts of an expression between operators of one level.
sub parts {
  my ($operator, $expression) = @_;
  my @parts = ('');
  while ($expression =~ /\G($nested|\{[^{}]*\}|$string|'(?:[^'\\]|\\.)'|\Q$operator\E|.)/gs) {
    if ($1 eq $operator) { push @parts, '' } else { $parts[-1] .= $1 }
  }
  s/^\s+|\s+$//g for @parts;
  return @parts;
}

sub literal { return join '', map { s/\\(.)/$1/gr } $_[0] =~ /"((?:[^"\\]|\\.)*)"/g }

my (%logged, %documented);
for my $file (sort split /\0/, `find TalObjectModel Include Platform DeviceStack Notation -name '*.cpp' -print0 -o -name '*.h' -print0`) {
  my $code = slurp($file);
  $code =~ s{($string)|//[^\n]*}{$1 // ''}ge;
  $code =~ s/^[ \t]*#(?:[^\n\\]|\\\n|\\.)*$//mg;
  my %texts = map { @$_ } map { [/(\w+)\[\] = (.*)/s] } $code =~ /constexpr char (k\w+\[\] = (?:$string\s*)+);/g;
  $_ = literal($_) for values %texts;
  # Types that print themselves.
  my $message;
  my %printed;
  $message = sub {
    my $text = '';
    for my $part (@_) {
      $text .= $part =~ /^$string/ ? literal($part)
        : $part =~ /^'(.)'$/ ? $1
        : exists $texts{$part} ? $texts{$part}
        : $part =~ /^(\w+)\{/ && $printed{$1} ? $printed{$1}
        : '{}';
    }
    return $text =~ s/(?:\{\})+/{}/gr;
  };
  while ($code =~ /operator<<\(std::ostream& os, const (\w+)& \w+\) \{\s*return os << ((?:$string|[^;"])*);/g) {
    my ($type, $expression) = ($1, $2);
    $printed{$type} = $message->(parts('<<', $expression));
  }
  my $records = () = $code =~ /\bTAL_LOG(?:_AT)?\(/g;
  while ($code =~ /\bTAL_LOG(?:_AT)?\((\w+)[^()]*\)\s*<<\s*((?:$string|[^;"])*);/g) {
    my ($level, @operands) = (uc $1, parts('<<', $2));
    --$records;
    next if $operands[0] =~ $handed;
    my $text = $message->(@operands);
    $text =~ /[^{}]/ or die "$file: a record without a text of its own: @operands\n";
    $logged{"$file: $level $text" =~ s/\s+$//r}++;
  }
  $records == 0 or die "$file: $records records could not be read\n";
  while ($code =~ /\b(\w+)$nested/g) {
    my ($name, $arguments) = ($1, substr $2, 1, -1);
    pos($code) -= length $arguments;    # calls stand in calls
    my @arguments = parts(',', $arguments);
    if ($name =~ /^TAL_ASSERT2(_AT)?$/) {
      $logged{"$file: FATAL {} TAL_ASSERT2($arguments[0]) failed"}++;
    } elsif (my $helper = $helpers{$name}) {
      my ($at, $level, $behind) = @$helper;
      my $text = $arguments[$at] // '';
      next if $arguments =~ /const CallSite&/ || $level eq 'INFO' && $text !~ /^$string/;    # no call of it
      $text =~ /^$string/ || exists $texts{$text} or die "$file: $name is handed a text that is no constant: $text\n";
      $logged{"$file: $level " . $message->($text) . $behind}++;
    }
  }
}

my $heading = '';
for (split /\n/, slurp('Docs/Logging.md')) {
  $heading = $1 if /^#+ `?(.*?)`?$/;
  my ($level, $messages) = /^\| ([A-Z]+) \| (`.*?`) \| / or next;
  $documented{"$heading: $level " . s/\{[^{}]*\}/{}/gr =~ s/\s+$//r}++ for $messages =~ /`([^`]*)`/g;
}

my $faults = 0;
for (sort keys %logged) { $documented{$_} or $faults++, print "not in Docs/Logging.md: $_\n" }
for (sort keys %documented) { $logged{$_} or $faults++, print "in no source: $_\n" }
printf "%d messages, %d differ\n", scalar keys %logged, $faults;
exit($faults || !%logged ? 1 : 0);
