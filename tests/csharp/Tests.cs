using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Threading;
using System.Threading.Tasks;
using Kestova;

// Plain tests of the C# binding: each public method of Tests is one.
internal static class Program
{
    private static int Main(string[] words)
    {
        if (words.Length > 1 && words[0] == "answers")
        {
            Answers.Print(words[1], words.Skip(2));
            return 0;
        }
        if (words.Length == 1 && words[0] == "members")
        {
            foreach (Type type in typeof(Manager).Assembly.GetExportedTypes())
                foreach (MemberInfo member in type.GetMembers())
                    Console.WriteLine(type.Name + " " + member.Name);
            return 0;
        }
        int failed = 0;
        MethodInfo[] tests = typeof(Tests).GetMethods(BindingFlags.Public | BindingFlags.Static);
        foreach (MethodInfo test in tests)
        {
            try
            {
                test.Invoke(null, null);
            }
            catch (TargetInvocationException exception)
            {
                ++failed;
                Console.WriteLine("{0}: {1}", test.Name, exception.InnerException);
            }
        }
        Console.WriteLine("{0} passed, {1} failed", tests.Length - failed, failed);
        return failed == 0 && tests.Length > 0 ? 0 : 1;
    }
}

internal static class Expect
{
    internal static void Equal<T>(T expected, T actual)
    {
        if (!EqualityComparer<T>.Default.Equals(expected, actual))
            throw new Exception("expected " + expected + ", got " + actual);
    }

    internal static void True(bool condition)
    {
        Equal(true, condition);
    }

    internal static T Throws<T>(Action action) where T : Exception
    {
        try
        {
            action();
        }
        catch (T exception)
        {
            return exception;
        }
        throw new Exception("expected " + typeof(T).Name + ", nothing was thrown");
    }
}

// Lets an operation stand still at its first record.
internal sealed class Halt : IDisposable
{
    private readonly Manager manager;
    private readonly ManualResetEvent reached = new ManualResetEvent(false);
    private readonly ManualResetEvent released = new ManualResetEvent(false);

    internal Halt(Manager manager)
    {
        this.manager = manager;
        manager.Logged += Stand;
    }

    internal void WaitUntilReached()
    {
        Expect.True(reached.WaitOne(Tests.Long));
    }

    internal void Release()
    {
        manager.Logged -= Stand;
        released.Set();
    }

    public void Dispose()
    {
        Release();
    }

    private void Stand(object sender, LogEventArgs record)
    {
        reached.Set();
        released.WaitOne();
    }
}

public static class Tests
{
    internal static readonly TimeSpan Long = TimeSpan.FromSeconds(60);
    private static readonly TimeSpan SomeTime = TimeSpan.FromSeconds(20);
    private static readonly TimeSpan AMoment = TimeSpan.FromMilliseconds(1);

    private static Manager Ready()
    {
        var manager = new Manager();
        Expect.Equal(InitializeResult.Ready, manager.Initialize());
        return manager;
    }

    // Closes it when nothing refers to a handle any more: neither the collector nor the thread of a task is waited for.
    private static void CloseOnceReleased(EmulatedPc pc)
    {
        Expect.True(SpinWait.SpinUntil(delegate
        {
            GC.Collect();
            GC.WaitForPendingFinalizers();
            try
            {
                pc.Dispose();
                return true;
            }
            catch (KestovaException)
            {
                return false;
            }
        }, Long));
    }

    public static void SwitchesToTheRecoveryPartitionAndBack()
    {
        using (new EmulatedPc("factory-mbr"))
        using (Manager manager = Ready())
        {
            Expect.Equal((int?)2, manager.GetActivePartitionNumber());
            Expect.Equal(SetRcvprtActiveResult.Done, manager.SetRcvprtActive());
            Expect.Equal((int?)1, manager.GetActivePartitionNumber());
            Expect.Equal(SetSystemActiveResult.Done, manager.SetSystemActive());
            Expect.Equal(ProblemCode.None, manager.LastProblem.Code);
        }
    }

    public static void AFailedOperationThrowsNothingAndTellsWhy()
    {
        using (var pc = new EmulatedPc("factory-mbr"))
        using (Manager manager = Ready())
        {
            pc.Fail("IVdsAdvancedDisk::ChangeAttributes=E_FAIL");
            Expect.Equal(SetRcvprtActiveResult.FlagNotSet, manager.SetRcvprtActive());
            Problem problem = manager.LastProblem;
            Expect.Equal(ProblemCode.Failed, problem.Code);
            Expect.Equal("SetRcvprtActive", problem.Operation);
            Expect.Equal((int?)SetRcvprtActiveResult.FlagNotSet, problem.Result);
            Expect.Equal(Manager.Describe("SetRcvprtActive", 5), problem.Words);
            Expect.True(problem.Record.Contains("SetActive"));
            pc.Fail(null);
            Expect.Equal(SetRcvprtActiveResult.Done, manager.SetRcvprtActive());
        }
    }

    public static void DescribesAResultOrNothing()
    {
        Expect.Equal("done, or it was active already", Manager.Describe("SetRcvprtActive", 0));
        Expect.Equal(null, Manager.Describe("SetRcvprtActive", 77));
        Expect.Equal(null, Manager.Describe("Nothing", 0));
    }

    public static void RefusesASizeThatIsNotPossible()
    {
        using (new EmulatedPc("factory-mbr"))
        using (Manager manager = Ready())
        {
            string letters;
            LetterPlace[] records;
            var exception = Expect.Throws<KestovaException>(() => manager.GetAllEncryptVolume(out letters, 0));
            Expect.Equal(ProblemCode.Argument, exception.Problem.Code);
            Expect.Equal("GetAllEncryptVolume", exception.Problem.Operation);
            exception = Expect.Throws<KestovaException>(() => manager.GetWinDriveLetters(out records, -1));
            Expect.Equal(ProblemCode.Argument, exception.Problem.Code);
        }
    }

    public static void RefusesCallsAfterDispose()
    {
        using (new EmulatedPc("factory-mbr"))
        {
            Manager manager = Ready();
            manager.Dispose();
            manager.Dispose();
            Expect.Throws<ObjectDisposedException>(() => manager.IsDynamic());
            Expect.Throws<ObjectDisposedException>(() => manager.StopWaiting());
        }
    }

    public static void RefusesAPcThatIsNotThereOrASecondOne()
    {
        var exception = Expect.Throws<KestovaException>(() => new EmulatedPc("no-such-machine"));
        Expect.Equal(ProblemCode.Pc, exception.Problem.Code);
        using (var pc = new EmulatedPc("factory-mbr"))
        {
            Expect.Throws<KestovaException>(() => new EmulatedPc("factory-gpt"));
            Expect.Throws<KestovaException>(() => pc.Fail("no fault"));
            using (Ready())
                Expect.Throws<KestovaException>(pc.Dispose);
        }
    }

    public static void SavesAPcThatOpensAgainAsItWas()
    {
        string file = Path.GetTempFileName();
        using (var pc = new EmulatedPc("factory-mbr"))
        using (Manager manager = Ready())
        {
            manager.SetRcvprtActive();
            pc.Save(file);
            Expect.True(pc.NextTrace() != null);
        }
        using (var pc = new EmulatedPc(file))
        {
            Expect.Equal(null, pc.Outstanding());
            using (Manager manager = Ready())
            {
                Expect.True(pc.Outstanding().Contains("IVdsService"));
                Expect.Equal((int?)1, manager.GetActivePartitionNumber());
            }
        }
        File.Delete(file);
    }

    public static void AReceiverOfTheLogCannotCallAndItsExceptionIsLost()
    {
        using (new EmulatedPc("factory-mbr"))
        using (Manager manager = Ready())
        {
            var codes = new List<ProblemCode>();
            manager.Logged += delegate
            {
                codes.Add(Expect.Throws<KestovaException>(() => manager.IsDynamic()).Problem.Code);
                throw new Exception("lost");
            };
            Expect.Equal((int?)2, manager.GetActivePartitionNumber());
            Expect.True(codes.Count > 0 && codes.All(code => code == ProblemCode.Busy));
        }
    }

    public static void TheReceiverOutlivesACollection()
    {
        using (new EmulatedPc("factory-mbr"))
        using (Manager manager = Ready())
        {
            int records = 0;
            manager.Logged += delegate
            {
                GC.Collect();
                ++records;
            };
            for (int round = 0; round < 3; ++round)
            {
                GC.Collect();
                GC.WaitForPendingFinalizers();
                int before = records;
                manager.GetActivePartitionNumber();
                Expect.True(records > before);
            }
        }
    }

    public static void AForgottenObjectIsClosedByTheCollector()
    {
        var pc = new EmulatedPc("factory-mbr");
        var forgetting = new Thread(() => Ready().Logged += delegate { });
        forgetting.Start();
        forgetting.Join();
        CloseOnceReleased(pc);
    }

    public static void AsynchronousCallsHaveTheSameResults()
    {
        using (new EmulatedPc("winpe-media"))
        using (var manager = new Manager())
        {
            Expect.Equal(InitializeResult.Ready, manager.InitializeAsync().Result);
            LetterPlace[] records;
            Expect.Equal(GetWinDriveLettersResult.Done, manager.GetWinDriveLetters(out records));
            DriveLetters letters = manager.GetWinDriveLettersAsync().Result;
            Expect.Equal(GetWinDriveLettersResult.Done, letters.Result);
            Expect.True(records.Length > 0 && records.SequenceEqual(letters.Records));
            Expect.Equal(manager.SetRcvprtActive(), manager.SetRcvprtActiveAsync().Result);
        }
    }

    public static void ACancelledTaskEndsAtOnceAndTheCallAtItsEnd()
    {
        var pc = new EmulatedPc("factory-mbr");
        using (Manager manager = Ready())
        using (var halt = new Halt(manager))
        using (var cancellation = new CancellationTokenSource())
        {
            Task<SetRcvprtActiveResult> task = manager.SetRcvprtActiveAsync(cancellation.Token);
            halt.WaitUntilReached();
            cancellation.Cancel();
            Expect.True(task.IsCanceled);
            Expect.Equal(false, manager.WaitUntilFree(TimeSpan.Zero));
            // Whose turn is behind a call that is still waited for is refused after the limit only.
            manager.SetWait(SomeTime);
            Stopwatch watch = Stopwatch.StartNew();
            var exception = Expect.Throws<KestovaException>(() => manager.IsDynamic());
            Expect.Equal(ProblemCode.Busy, exception.Problem.Code);
            Expect.True(watch.Elapsed < SomeTime);
            halt.Release();
            Expect.True(manager.WaitUntilFree(Long));
            Expect.Equal("SetRcvprtActive", manager.LastProblem.Operation);
            Expect.Equal((int?)SetRcvprtActiveResult.Done, manager.LastProblem.Result);
            Expect.Equal((int?)1, manager.GetActivePartitionNumber());
        }
        CloseOnceReleased(pc);
    }

    public static void ATaskThatIsCancelledBeforeItStartsCallsNothing()
    {
        using (new EmulatedPc("factory-mbr"))
        using (Manager manager = Ready())
        using (var cancellation = new CancellationTokenSource())
        {
            cancellation.Cancel();
            Expect.True(manager.SetRcvprtActiveAsync(cancellation.Token).IsCanceled);
            Expect.Equal((int?)2, manager.GetActivePartitionNumber());
        }
    }

    public static void ACallThatIsNotWaitedForLeavesTheObjectBusy()
    {
        using (new EmulatedPc("factory-mbr"))
        using (Manager manager = Ready())
        using (var halt = new Halt(manager))
        {
            manager.SetWait(AMoment);
            Expect.Equal(null, manager.GetActivePartitionNumber());
            Expect.Equal(ProblemCode.Stopped, Manager.ThreadProblem.Code);
            var exception = Expect.Throws<KestovaException>(() => manager.SetActive(1));
            Expect.Equal(ProblemCode.Busy, exception.Problem.Code);
            halt.Release();
            Expect.True(manager.WaitUntilFree(Long));
            manager.SetWait(TimeSpan.Zero);
            Expect.Equal((int?)2, manager.GetActivePartitionNumber());
        }
    }

    public static void DisposeDuringACallLetsItEnd()
    {
        using (new EmulatedPc("factory-mbr"))
        {
            Manager manager = Ready();
            Task<SetRcvprtActiveResult> task;
            using (var halt = new Halt(manager))
            {
                task = manager.SetRcvprtActiveAsync();
                halt.WaitUntilReached();
                manager.Dispose();
                Expect.Throws<ObjectDisposedException>(() => manager.IsDynamic());
            }
            Expect.Equal(SetRcvprtActiveResult.Done, task.Result);
        }
    }

    public static void ObjectsWorkOnManyThreadsAtOnce()
    {
        using (new EmulatedPc("factory-mbr"))
        using (Manager shared = Ready())
        {
            Task<bool>[] tasks = Enumerable.Range(0, 8).Select(number => Task.Factory.StartNew(delegate
            {
                using (Manager own = Ready())
                    return Enumerable.Range(0, 20).All(
                        round => own.GetActivePartitionNumber() == 2 && shared.GetDriveLetter(0, 2) == 'C');
            }, TaskCreationOptions.LongRunning)).ToArray();
            Expect.True(tasks.All(task => task.Result));
        }
    }
}
